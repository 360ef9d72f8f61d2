#include "Report.h"

#include <algorithm>
#include <iomanip>
#include <locale>
#include <sstream>

namespace probestats {
namespace {

constexpr int kColumnWidth = 6;
constexpr int kCountWidth = 9;
constexpr int kHeadingWidth = 11;
// The characters of a number in addition to its digits: a blank, a sign, a point, and an exponent of three digits.
constexpr int kAroundDigits = 8;

// Returns a stream that writes numbers without the host's locale.
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

std::string titleLine(const ReportStyle& style) { return style.title.empty() ? "" : style.title + '\n'; }

// At least wide enough for the headings.
int numberWidth(const ReportStyle& style) { return std::max(kHeadingWidth, style.digits + kAroundDigits); }

void writeHeading(std::ostream& out, FrequencyColumn frequencies, int width) {
    out << std::setw(kColumnWidth) << "column" << std::setw(kCountWidth) << "count";
    for (const char* heading : {"mean", "deviation", "minimum", "maximum"}) out << std::setw(width) << heading;
    if (frequencies == FrequencyColumn::Shown) out << std::setw(width) << "frequency";
    out << '\n';
}

void writeRow(std::ostream& out, const SummaryRow& row, FrequencyColumn frequencies, int width) {
    const Summary& summary = row.summary;
    out << std::setw(kColumnWidth) << row.column << std::setw(kCountWidth) << summary.count;
    for (const double number : {summary.mean, summary.deviation, summary.minimum, summary.maximum}) {
        out << std::setw(width) << number;
    }
    if (frequencies == FrequencyColumn::Shown) {
        out << std::setw(width);
        if (row.frequency) {
            out << *row.frequency;
        } else {
            out << '-';
        }
    }
    out << '\n';
}

// Writes one line for each peak; without a peak, writes one line with `-`.
void writePeaks(std::ostream& out, const SpectrumRow& row, int width) {
    const std::string name = row.name.empty() ? "" : "  " + row.name;
    for (const Peak& peak : row.peaks) {
        out << std::setw(kColumnWidth) << row.column << std::setw(width) << peak.frequency << std::setw(width)
            << peak.amplitude << name << '\n';
    }
    if (!row.peaks.empty()) return;
    out << std::setw(kColumnWidth) << row.column << std::setw(width) << '-' << std::setw(width) << '-' << name << '\n';
}

}  // namespace

std::string loadReport(const ProbeData& data) {
    return "Loaded " + data.fileName + ": " + std::to_string(data.rowCount()) + " rows of columns " +
           data.columnNumbers().toString() + ", " + describeRate(data.sampleRate, 1) + '\n';
}

std::string windowReport(const RowWindow& window) { return "Window: " + describe(window) + '\n'; }

std::string summaryReport(const ProbeData& data, const RowWindow& window, const std::vector<SummaryRow>& rows,
                          FrequencyColumn frequencies, const ReportStyle& style) {
    std::ostringstream out = classicStream();
    const int width = numberWidth(style);
    out << titleLine(style) << data.fileName << ": " << describe(window) << ", "
        << describeRate(data.sampleRate, window.stride) << '\n';
    writeHeading(out, frequencies, width);
    out.precision(style.digits);
    for (const SummaryRow& row : rows) writeRow(out, row, frequencies, width);
    return out.str();
}

std::string spectrumReport(const ProbeData& data, const RowWindow& window, const SpectrumPlan& plan,
                           const std::vector<SpectrumRow>& rows, const ReportStyle& style) {
    std::ostringstream out = classicStream();
    const int width = numberWidth(style);
    out << titleLine(style) << data.fileName << ": " << describe(window) << ", "
        << describeRate(data.sampleRate, window.stride) << '\n'
        << "sections: " << plan.sectionCount(static_cast<std::size_t>(window.count())) << " of " << plan.section
        << " rows; frequencies: " << plan.frequencyCount << ", from " << plan.minFrequency << " to "
        << plan.frequency(plan.frequencyCount - 1) << " Hz\n";
    out << std::setw(kColumnWidth) << "column" << std::setw(width) << "frequency" << std::setw(width) << "amplitude"
        << '\n';
    out.precision(style.digits);
    for (const SpectrumRow& row : rows) writePeaks(out, row, width);
    return out.str();
}

}  // namespace probestats
