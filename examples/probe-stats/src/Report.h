#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ProbeData.h"
#include "Spectrum.h"
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

/// What was found in one signal.
struct SpectrumRow {
    int64_t column;
    std::string name;         ///< of the column; may be empty
    std::vector<Peak> peaks;  ///< may be empty
};

/// How the tables look.
struct ReportStyle {
    int digits = 6;          ///< the significant digits of their numbers, 1 to 17
    std::string title = {};  ///< a line above them; none when it is empty
};

/// The texts below are the same in every locale. Each ends in a line feed. Rates have six significant digits.

/// One line: what was loaded.
std::string loadReport(const ProbeData& data);
/// One line: what rows are looked at.
std::string windowReport(const RowWindow& window);
/// The title, the file and window, then a table with a line for each of \p rows.
std::string summaryReport(const ProbeData& data, const RowWindow& window, const std::vector<SummaryRow>& rows,
                          FrequencyColumn frequencies, const ReportStyle& style = {});
/// The title, the file, window and plan, then a table with a line for each peak of \p rows.
std::string spectrumReport(const ProbeData& data, const RowWindow& window, const SpectrumPlan& plan,
                           const std::vector<SpectrumRow>& rows, const ReportStyle& style = {});

}  // namespace probestats
