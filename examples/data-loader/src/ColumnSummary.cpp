#include "ColumnSummary.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <locale>
#include <sstream>

namespace dataloader {
namespace {

constexpr const char* kNameHeading = "column";
constexpr int kCountWidth = 9;
constexpr int kNumberWidth = 14;

// Returns the width of a name: continuation bytes of UTF-8 characters do not count.
std::size_t widthOf(const std::string& name) {
    return static_cast<std::size_t>(std::count_if(
        name.begin(), name.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

std::string padded(const std::string& name, std::size_t width) {
    return name + std::string(width - widthOf(name), ' ');
}

void writeNumber(std::ostream& out, double number, bool isKnown) {
    out << std::setw(kNumberWidth);
    if (isKnown) {
        out << number;
    } else {
        out << '-';
    }
}

void writeLine(std::ostream& out, const ColumnSummary& summary) {
    out << std::setw(kCountWidth) << summary.count << std::setw(kCountWidth) << summary.missing;
    for (const double number : {summary.minimum, summary.maximum, summary.mean}) {
        writeNumber(out, number, summary.count > 0);
    }
    writeNumber(out, summary.deviation, summary.count > 1);
    out << '\n';
}

}  // namespace

// Updates the mean and the sum of squares with each value. This keeps small deviations accurate if the mean is large.
ColumnSummary summarize(const Column& column) {
    ColumnSummary summary;
    double squares = 0.0;
    for (const double value : column.values) {
        if (std::isnan(value)) {
            ++summary.missing;
            continue;
        }
        const bool isFirst = summary.count == 0;
        ++summary.count;
        summary.minimum = isFirst ? value : std::min(summary.minimum, value);
        summary.maximum = isFirst ? value : std::max(summary.maximum, value);
        const double offset = value - summary.mean;
        summary.mean += offset / static_cast<double>(summary.count);
        squares += offset * (value - summary.mean);
    }
    if (summary.count > 1) summary.deviation = std::sqrt(squares / static_cast<double>(summary.count - 1));
    return summary;
}

std::string summaryText(const Table& table) {
    std::size_t width = widthOf(kNameHeading);
    for (const Column& column : table.columns) width = std::max(width, widthOf(column.name));

    std::ostringstream out;
    out.imbue(std::locale::classic());
    out << padded(kNameHeading, width);
    for (const char* heading : {"count", "missing"}) out << std::setw(kCountWidth) << heading;
    for (const char* heading : {"minimum", "maximum", "mean", "deviation"}) out << std::setw(kNumberWidth) << heading;
    out << '\n';
    for (const Column& column : table.columns) {
        out << padded(column.name, width);
        writeLine(out, summarize(column));
    }
    return out.str();
}

}  // namespace dataloader
