#include "Cells.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "Errors.h"

namespace dataloader {
namespace {

constexpr char kComma = ',';
constexpr char kQuote = '"';

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\v' || c == '\f'; }

std::size_t blanksBefore(std::string_view text) {
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isBlank) - text.begin());
}

std::string_view withoutTrailingBlanks(std::string_view text) {
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

bool isQuoted(std::string_view cell) { return !cell.empty() && cell.front() == kQuote; }

std::string_view withoutQuotes(std::string_view cell) {
    return isQuoted(cell) ? cell.substr(1, cell.size() - 2) : cell;
}

bool isNotAvailable(std::string_view text) {
    return text.size() == 2 && (text[0] == 'N' || text[0] == 'n') && (text[1] == 'A' || text[1] == 'a');
}

}  // namespace

Separator separatorIn(std::string_view header) {
    bool isInQuotes = false;
    for (const char c : header) {
        if (c == kQuote) isInQuotes = !isInQuotes;
        if (c == kComma && !isInQuotes) return Separator::Comma;
    }
    return Separator::Blank;
}

Cells::Cells(std::string_view row, Separator separator)
    : m_rest(row), m_separator(separator), m_isCellDue(separator == Separator::Comma) {}

bool Cells::next(std::string_view& cell) {
    m_rest.remove_prefix(blanksBefore(m_rest));
    if (m_rest.empty() && !m_isCellDue) return false;
    const std::size_t length = isQuoted(m_rest) ? quotedLength() : plainLength();
    cell = withoutTrailingBlanks(m_rest.substr(0, length));
    m_rest.remove_prefix(length);
    passSeparator();
    return true;
}

std::size_t Cells::quotedLength() const {
    std::size_t close = m_rest.find(kQuote, 1);
    while (close != std::string_view::npos && m_rest.substr(close + 1, 1) == "\"")
        close = m_rest.find(kQuote, close + 2);
    if (close == std::string_view::npos) throw RowError("Expected a closing quote");
    return close + 1;
}

std::size_t Cells::plainLength() const {
    if (m_separator == Separator::Comma) return std::min(m_rest.find(kComma), m_rest.size());
    return static_cast<std::size_t>(std::find_if(m_rest.begin(), m_rest.end(), isBlank) - m_rest.begin());
}

// Only after a closing quote can another character follow.
void Cells::passSeparator() {
    const std::size_t blanks = blanksBefore(m_rest);
    m_rest.remove_prefix(blanks);
    if (m_separator == Separator::Blank) {
        if (blanks == 0 && !m_rest.empty()) throw RowError("Expected a blank after the closing quote");
        return;
    }
    m_isCellDue = !m_rest.empty();
    if (!m_isCellDue) return;
    if (m_rest.front() != kComma) throw RowError("Expected a comma after the closing quote");
    m_rest.remove_prefix(1);
}

std::string textIn(std::string_view cell) {
    std::string text(withoutQuotes(cell));
    if (!isQuoted(cell)) return text;
    for (std::size_t at = text.find(kQuote); at != std::string::npos; at = text.find(kQuote, at + 1)) text.erase(at, 1);
    return text;
}

CellContent readNumber(std::string_view cell, double& number) {
    std::string_view text = withoutQuotes(cell);
    if (text.empty() || isNotAvailable(text)) return CellContent::Missing;
    // The conversion does not accept a plus sign.
    if (text.front() == '+' && text.substr(1, 1) != "-") text.remove_prefix(1);
    const char* const end = text.data() + text.size();
    double value = 0.0;
    const auto [stop, failure] = std::from_chars(text.data(), end, value);
    if (failure != std::errc() || stop != end || std::isinf(value)) return CellContent::Other;
    if (std::isnan(value)) return CellContent::Missing;
    number = value;
    return CellContent::Number;
}

}  // namespace dataloader
