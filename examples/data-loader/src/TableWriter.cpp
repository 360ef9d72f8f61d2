#include "TableWriter.h"

#include <array>
#include <charconv>
#include <cmath>

#include "AtomicFile.h"
#include "LongTask.h"

namespace dataloader {
namespace {

constexpr const char* kMissing = "NA";
constexpr std::size_t kBlock = 1 << 16;
// Enough for the shortest form of any double: 17 digits, sign, point, exponent.
constexpr std::size_t kLongestNumber = 32;

std::string quoted(const std::string& name) {
    std::string text = "\"";
    for (const char c : name) text += c == '"' ? "\"\"" : std::string(1, c);
    return text + '"';
}

void appendNumber(std::string& text, double number) {
    if (std::isnan(number)) {
        text += kMissing;
        return;
    }
    std::array<char, kLongestNumber> digits{};
    text.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

}  // namespace

void writeTable(const Table& table, const std::string& fileName) {
    AtomicFile out(fileName);
    std::string text;
    for (const Column& column : table.columns) text += (text.empty() ? "" : ",") + quoted(column.name);
    text += '\n';
    LongTask task("EXPORT", "Writing " + fileName, table.rowCount());
    for (std::size_t row = 0; row < table.rowCount(); ++row) {
        for (const Column& column : table.columns) {
            appendNumber(text, column.values[row]);
            text += ',';
        }
        text.back() = '\n';
        if (text.size() >= kBlock) {
            out.write(text);
            text.clear();
        }
        task.step();
    }
    out.write(text);
    out.commit();
}

}  // namespace dataloader
