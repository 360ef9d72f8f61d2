#include "Report.h"

#include <iomanip>
#include <locale>
#include <sstream>

namespace probestats {
namespace {

constexpr int kColumnWidth = 6;
constexpr int kCountWidth = 9;
constexpr int kNumberWidth = 14;

// Numbers go through streams like this one, so that the host's locale does not show.
std::ostringstream classicStream() {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    return out;
}

std::string describe(const RowWindow& window) {
    std::string text = std::to_string(window.count()) + " rows, from " + std::to_string(window.first) + " to " +
                       std::to_string(window.last);
    if (window.stride != 1) text += " in steps of " + std::to_string(window.stride);
    return text;
}

std::string describeRate(const std::optional<double>& rate, int32_t stride) {
    std::ostringstream out = classicStream();
    if (!rate) return "no sample rate";
    out << *rate / stride << " Hz";
    return out.str();
}

void writeHeading(std::ostream& out, FrequencyColumn frequencies) {
    out << std::setw(kColumnWidth) << "column" << std::setw(kCountWidth) << "count";
    for (const char* heading : {"mean", "deviation", "minimum", "maximum"}) out << std::setw(kNumberWidth) << heading;
    if (frequencies == FrequencyColumn::Shown) out << std::setw(kNumberWidth) << "frequency";
    out << '\n';
}

void writeRow(std::ostream& out, const SummaryRow& row, FrequencyColumn frequencies) {
    const Summary& summary = row.summary;
    out << std::setw(kColumnWidth) << row.column << std::setw(kCountWidth) << summary.count;
    for (const double number : {summary.mean, summary.deviation, summary.minimum, summary.maximum}) {
        out << std::setw(kNumberWidth) << number;
    }
    if (frequencies == FrequencyColumn::Shown) {
        out << std::setw(kNumberWidth);
        if (row.frequency) {
            out << *row.frequency;
        } else {
            out << '-';
        }
    }
    out << '\n';
}

// One line for each peak; one that shows its lack when there is none.
void writePeaks(std::ostream& out, const SpectrumRow& row) {
    const std::string name = row.name.empty() ? "" : "  " + row.name;
    for (const Peak& peak : row.peaks) {
        out << std::setw(kColumnWidth) << row.column << std::setw(kNumberWidth) << peak.frequency
            << std::setw(kNumberWidth) << peak.amplitude << name << '\n';
    }
    if (!row.peaks.empty()) return;
    out << std::setw(kColumnWidth) << row.column << std::setw(kNumberWidth) << '-' << std::setw(kNumberWidth) << '-'
        << name << '\n';
}

}  // namespace

std::string loadReport(const ProbeData& data) {
    return "Loaded " + data.fileName + ": " + std::to_string(data.rowCount()) + " rows of columns " +
           data.columnNumbers().toString() + ", " + describeRate(data.sampleRate, 1) + '\n';
}

std::string windowReport(const RowWindow& window) { return "Window: " + describe(window) + '\n'; }

std::string summaryReport(const ProbeData& data, const RowWindow& window, const std::vector<SummaryRow>& rows,
                          FrequencyColumn frequencies) {
    std::ostringstream out = classicStream();
    out << data.fileName << ": " << describe(window) << ", " << describeRate(data.sampleRate, window.stride) << '\n';
    writeHeading(out, frequencies);
    for (const SummaryRow& row : rows) writeRow(out, row, frequencies);
    return out.str();
}

std::string spectrumReport(const ProbeData& data, const RowWindow& window, const SpectrumPlan& plan,
                           const std::vector<SpectrumRow>& rows) {
    std::ostringstream out = classicStream();
    out << data.fileName << ": " << describe(window) << ", " << describeRate(data.sampleRate, window.stride) << '\n'
        << "sections: " << plan.sectionCount(static_cast<std::size_t>(window.count())) << " of " << plan.section
        << " rows; frequencies: " << plan.frequencyCount << ", from " << plan.minFrequency << " to "
        << plan.frequency(plan.frequencyCount - 1) << " Hz\n";
    out << std::setw(kColumnWidth) << "column" << std::setw(kNumberWidth) << "frequency" << std::setw(kNumberWidth)
        << "amplitude" << '\n';
    for (const SpectrumRow& row : rows) writePeaks(out, row);
    return out.str();
}

}  // namespace probestats
