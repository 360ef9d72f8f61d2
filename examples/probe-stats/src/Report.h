#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ProbeData.h"
#include "Spectrum.h"
#include "Statistics.h"

namespace probestats {

/// A line of the table.
struct SummaryRow {
    int64_t column;
    Summary summary;
    std::optional<double> frequency;  ///< empty: the signal has no dominant frequency
};

/// Says whether the table shows frequencies.
enum class FrequencyColumn { Hidden, Shown };

/// The peaks of a signal.
struct SpectrumRow {
    int64_t column;
    std::string name;         ///< the name of the column; may be empty
    std::vector<Peak> peaks;  ///< may be empty
};

/// The style of the tables.
struct ReportStyle {
    int digits = 6;          ///< the significant digits of their numbers, 1 to 17
    std::string title = {};  ///< a line above the tables; empty for none
};

/// These functions return texts that do not depend on the locale. Each text ends with a line feed. Rates have six
// significant digits.

/// Returns one line about the loaded data.
std::string loadReport(const ProbeData& data);
/// Returns one line about the selected rows.
std::string windowReport(const RowWindow& window);
/// Returns the title, the file and the window, then a table with a line for each of \p rows.
std::string summaryReport(const ProbeData& data, const RowWindow& window, const std::vector<SummaryRow>& rows,
                          FrequencyColumn frequencies, const ReportStyle& style = {});
/// Returns the title, the file, the window and the plan, then a table with a line for each peak of \p rows.
std::string spectrumReport(const ProbeData& data, const RowWindow& window, const SpectrumPlan& plan,
                           const std::vector<SpectrumRow>& rows, const ReportStyle& style = {});

}  // namespace probestats
