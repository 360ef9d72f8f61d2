#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "vexa/toolbox/Set.h"

namespace probestats {

/// The minimum number of rows for a deviation or a sample rate.
constexpr int64_t kMinRows = 2;

/// The data to read from a text file. Columns are counted from 1.
struct ProbeFileRequest {
    std::string fileName;                       ///< relative names start at the current folder
    std::optional<vexa::toolbox::Set> columns;  ///< the columns to keep, not an empty set; no value: all columns
    uint64_t skipRows = 0;                      ///< rows to skip after the header
    std::optional<uint64_t> timeColumn;         ///< the column with the times in seconds, which give the sample rate
    std::optional<double> sampleRate;           ///< in Hz, above 0; not together with timeColumn
    bool hasHeader = false;                     ///< true if the first row has the names of the columns
};

/// A signal.
struct ProbeColumn {
    int64_t number;
    std::vector<double> values;
    std::string name = {};  ///< from the header; empty without one
};

/// The signals of a file. All columns have the same number of values.
struct ProbeData {
    std::string fileName;
    std::vector<ProbeColumn> columns;  ///< ascending by number, not empty
    std::optional<double> sampleRate;  ///< in Hz

    int64_t rowCount() const { return static_cast<int64_t>(columns.front().values.size()); }
    /// Returns the numbers of the columns.
    vexa::toolbox::Set columnNumbers() const;
};

/// Reads a file of numbers in columns, separated by white space.
///
///     # 1 time [s]       lines that start with # and empty lines are skipped
///     0.0 1.5 -2         every row has as many columns as the first
///
/// Only the requested columns must have numbers. The locale does not change how numbers are read. Lines may end in CR
/// LF. A NUL ends the file. \throws ProbeError "Cannot open FILE: " and the reason. \throws
/// vexa::vexautilutil::InvalidInstructionsException when the file has no such columns, holds something else
///         than numbers or fewer than two rows, or when the times do not advance evenly (by 1 %). What belongs to one
///         line begins with "FILE:LINE: ", all else with "FILE: ".
ProbeData readProbeFile(const ProbeFileRequest& request);

/// The selected rows: first, first + stride, ... up to last. Rows are counted from 1.
struct RowWindow {
    int64_t first = 1;
    int64_t last = 0;
    int32_t stride = 1;

    int64_t count() const { return last < first ? 0 : (last - first) / stride + 1; }
};

/// Returns the values of \p column in the rows of \p window. The column must have these rows.
std::vector<double> valuesIn(const RowWindow& window, const ProbeColumn& column);

}  // namespace probestats
