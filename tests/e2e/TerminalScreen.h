#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vexa::e2e {

/// What a terminal's window shows after a program's output: enough of a terminal for a line that is drawn in place.
///
/// Every character takes one column. It knows CR, LF, backspace, and of the escape sequences those that clear to the
/// end of the line or the screen, go up, and set colours. Any other control character is kept as '?', to be noticed.
class TerminalScreen {
public:
    explicit TerminalScreen(std::size_t columns) : m_columns(columns) {}

    /// Takes more of the output, which may end anywhere.
    void feed(std::string_view output);
    /// Makes the window narrower. What is to the right of the row with the cursor goes on below it.
    void narrow(std::size_t columns);
    /// The rows, without the blanks at their ends and the empty rows at the end.
    std::vector<std::string> rows() const;
    /// The row of the cursor, without the blanks at its end.
    std::string currentRow() const;

private:
    using Row = std::vector<std::string>;  // a character each

    static std::string textOf(const Row& row);
    std::size_t takeEscape(std::string_view sequence);
    void obey(char command, std::size_t count);
    void put(const std::string& character);
    void lineFeed();

    std::size_t m_columns;
    std::string m_pending;
    std::vector<Row> m_rows{1};
    std::size_t m_row = 0;
    std::size_t m_column = 0;
};

}  // namespace vexa::e2e
