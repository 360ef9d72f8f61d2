#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "vexa/toolbox/Set.h"

namespace probestats {

/// The fewest rows of which a deviation or a sample rate can be computed.
constexpr int64_t kMinRows = 2;

/// What to read from a text file. Columns are counted from 1.
struct ProbeFileRequest {
    std::string fileName;                       ///< relative names start at the current folder
    std::optional<vexa::toolbox::Set> columns;  ///< not empty; none: all
    uint64_t skipRows = 0;                      ///< rows passed over unread at the start, after the header
    std::optional<uint64_t> timeColumn;         ///< the times in seconds, from which the sample rate is computed
    std::optional<double> sampleRate;           ///< in Hz, above 0; not together with timeColumn
    bool hasHeader = false;                     ///< whether the first row holds the names of the columns
};

/// One signal.
struct ProbeColumn {
    int64_t number;
    std::vector<double> values;
    std::string name = {};  ///< from the header; empty without one
};

/// The signals of one file: all columns have one value a row.
struct ProbeData {
    std::string fileName;
    std::vector<ProbeColumn> columns;  ///< ascending by number, not empty
    std::optional<double> sampleRate;  ///< in Hz

    int64_t rowCount() const { return static_cast<int64_t>(columns.front().values.size()); }
    /// The numbers of the columns.
    vexa::toolbox::Set columnNumbers() const;
};

/// Reads a file of numbers in columns, between which white space stands.
///
///     # 1 time [s]       lines that begin with # and empty lines are no rows
///     0.0 1.5 -2         every row has as many columns as the first
///
/// Only the columns asked for have to hold numbers. Numbers are read the same in every locale; lines may end in
/// CR LF. A NUL ends the file.
/// \throws ProbeError "Cannot open FILE: " and the reason.
/// \throws vexa::vexautilutil::InvalidInstructionsException when the file has no such columns, holds something else
///         than numbers or fewer than two rows, or when the times do not advance evenly (by 1 %). What belongs to one
///         line begins with "FILE:LINE: ", all else with "FILE: ".
ProbeData readProbeFile(const ProbeFileRequest& request);

/// The rows that are looked at: first, first + stride, ... up to last. Rows are counted from 1.
struct RowWindow {
    int64_t first = 1;
    int64_t last = 0;
    int32_t stride = 1;

    int64_t count() const { return last < first ? 0 : (last - first) / stride + 1; }
};

/// The values of \p column in the rows of \p window, which must lie within it.
std::vector<double> valuesIn(const RowWindow& window, const ProbeColumn& column);

}  // namespace probestats
