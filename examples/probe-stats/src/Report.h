#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ProbeData.h"
#include "Statistics.h"

namespace probestats {

/// One line of the table.
struct SummaryRow {
    int64_t column;
    Summary summary;
    std::optional<double> frequency;  ///< none: the signal has no dominant frequency
};

/// Whether the table shows frequencies.
enum class FrequencyColumn { Hidden, Shown };

/// The texts below write numbers with six significant digits and are the same in every locale. Each ends in a line
/// feed.

/// One line: what was loaded.
std::string loadReport(const ProbeData& data);
/// One line: what rows are looked at.
std::string windowReport(const RowWindow& window);
/// The file and window, then a table with a line for each of \p rows.
std::string summaryReport(const ProbeData& data, const RowWindow& window, const std::vector<SummaryRow>& rows,
                          FrequencyColumn frequencies);

}  // namespace probestats
