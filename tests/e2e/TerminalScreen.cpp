#include "TerminalScreen.h"

#include <algorithm>
#include <cstdlib>

namespace vexa::e2e {
namespace {

constexpr char kEscape = '\033';

// How many bytes the character has that begins with \p first.
std::size_t bytesOf(char first) {
    const auto byte = static_cast<unsigned char>(first);
    if (byte >= 0xF0U) return 4;
    if (byte >= 0xE0U) return 3;
    return byte >= 0xC0U ? 2 : 1;
}

}  // namespace

void TerminalScreen::feed(std::string_view output) {
    m_pending += output;
    std::string_view rest = m_pending;
    while (!rest.empty()) {
        std::size_t taken = 1;
        const char c = rest.front();
        if (c == kEscape) {
            taken = takeEscape(rest);
        } else if (c == '\r') {
            m_column = 0;
        } else if (c == '\n') {
            lineFeed();
        } else if (c == '\b') {
            m_column -= std::min<std::size_t>(m_column, 1);
        } else {
            taken = bytesOf(c);
            if (taken > rest.size()) break;
            put(static_cast<unsigned char>(c) < 0x20U ? "?" : std::string(rest.substr(0, taken)));
        }
        if (taken == 0) break;  // the rest of the sequence is to come
        rest.remove_prefix(taken);
    }
    m_pending = std::string(rest);
}

void TerminalScreen::narrow(std::size_t columns) {
    m_columns = columns;
    for (std::size_t row = m_row; m_rows[row].size() > columns; ++row) {
        const auto end = m_rows[row].begin() + static_cast<std::ptrdiff_t>(columns);
        const Row wrapped(end, m_rows[row].end());
        m_rows[row].erase(end, m_rows[row].end());
        m_rows.insert(m_rows.begin() + static_cast<std::ptrdiff_t>(row) + 1, wrapped);
    }
}

std::vector<std::string> TerminalScreen::rows() const {
    std::vector<std::string> texts;
    for (const Row& row : m_rows) texts.push_back(textOf(row));
    while (!texts.empty() && texts.back().empty()) texts.pop_back();
    return texts;
}

std::string TerminalScreen::currentRow() const { return textOf(m_rows[m_row]); }

std::string TerminalScreen::textOf(const Row& row) {
    std::string text;
    for (const std::string& character : row) text += character;
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

// Returns how long the sequence is; 0 when it is not complete.
std::size_t TerminalScreen::takeEscape(std::string_view sequence) {
    const std::size_t end = sequence.find_first_not_of("[0123456789;?", 1);
    if (end == std::string_view::npos) return 0;
    const std::string parameters(sequence.substr(std::min<std::size_t>(2, end), end - std::min<std::size_t>(2, end)));
    obey(sequence[end], std::strtoul(parameters.c_str(), nullptr, 10));
    return end + 1;
}

void TerminalScreen::obey(char command, std::size_t count) {
    Row& row = m_rows[m_row];
    switch (command) {
        case 'm': break;
        case 'A': m_row -= std::min(m_row, std::max<std::size_t>(count, 1)); break;
        case 'J': m_rows.resize(m_row + 1); [[fallthrough]];
        case 'K': row.resize(std::min(m_rows[m_row].size(), m_column)); break;
        default: put("?");
    }
}

void TerminalScreen::put(const std::string& character) {
    if (m_column == m_columns) {
        m_column = 0;
        lineFeed();
    }
    Row& row = m_rows[m_row];
    row.resize(std::max(row.size(), m_column + 1), " ");
    row[m_column++] = character;
}

void TerminalScreen::lineFeed() {
    ++m_row;
    if (m_row == m_rows.size()) m_rows.emplace_back();
}

}  // namespace vexa::e2e
