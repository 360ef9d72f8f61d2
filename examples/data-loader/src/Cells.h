#pragma once

#include <string>
#include <string_view>

namespace dataloader {

/// The separator between the cells of a row.
enum class Separator {
    Comma,  ///< one comma, with any white space around it; a cell may be empty
    Blank   ///< any white space
};

/// Returns the separator of a file with the header line \p header: a comma if the line has one outside of quotes.
Separator separatorIn(std::string_view header);

/// Iterates over the cells of one row. It copies nothing: cells are views of the row.
///
///     Comma:   1, "a, b",, 2     ->   1   "a, b"   (empty)   2
///     Blank:   1 "a, b"  2       ->   1   "a, b"   2
///     Comma:   "a                ->   refused: Expected a closing quote
///     Comma:   "a" b             ->   refused: Expected a comma after the closing quote
///
/// A quote inside a quoted cell is written as two quotes. Quoted cells are returned with their quotes.
class Cells {
public:
    Cells(std::string_view row, Separator separator);

    /// Moves to the next cell.
    /// \return false if there is none; \p cell is then unchanged.
    /// \throws RowError if a closing quote is missing, or is in the middle of a cell.
    bool next(std::string_view& cell);

private:
    std::size_t quotedLength() const;
    std::size_t plainLength() const;
    void passSeparator();

    std::string_view m_rest;
    Separator m_separator;
    bool m_isCellDue;  // after a comma there is always a cell, which may be empty
};

/// Returns the text of \p cell, without its quotes.
std::string textIn(std::string_view cell);

/// The content of a cell in a number column.
enum class CellContent {
    Number,
    Missing,  ///< an empty cell, or NA or NaN in any letter case
    Other     ///< anything else, including infinities and numbers outside the range of a double
};

/// Reads a number, with or without quotes, the same in every locale.
/// \param number receives the number; unchanged if \p cell has none.
CellContent readNumber(std::string_view cell, double& number);

}  // namespace dataloader
