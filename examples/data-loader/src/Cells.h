#pragma once

#include <string>
#include <string_view>

namespace dataloader {

/// What stands between the cells of a row.
enum class Separator {
    Comma,  ///< one comma, and white space around it at will; there may be nothing in a cell
    Blank   ///< any white space
};

/// The separator of a file whose header line is \p header: a comma where one stands outside quotes.
Separator separatorIn(std::string_view header);

/// Walks over the cells of one row. Nothing is copied: cells are views of the row.
///
///     Comma:   1, "a, b",, 2     ->   1   "a, b"   (empty)   2
///     Blank:   1 "a, b"  2       ->   1   "a, b"   2
///     Comma:   "a                ->   refused: Expected a closing quote
///     Comma:   "a" b             ->   refused: Expected a comma after the closing quote
///
/// A quote within a quoted cell is doubled. Quoted cells come with their quotes.
class Cells {
public:
    Cells(std::string_view row, Separator separator);

    /// Moves on to the next cell.
    /// \return false when there is none; \p cell is untouched then.
    /// \throws RowError when quotes are not closed, or closed in the middle of a cell.
    bool next(std::string_view& cell);

private:
    std::size_t quotedLength() const;
    std::size_t plainLength() const;
    void passSeparator();

    std::string_view m_rest;
    Separator m_separator;
    bool m_isCellDue;  // behind a comma there is a cell, be it empty
};

/// The text of \p cell, without its quotes.
std::string textIn(std::string_view cell);

/// What a cell of a number column can hold.
enum class CellContent {
    Number,
    Missing,  ///< nothing, or NA or NaN in any letter case
    Other     ///< also an infinity, or a number that is out of a double's range
};

/// Reads a number, with or without quotes, the same in every locale.
/// \param number receives the number; untouched when \p cell has none.
CellContent readNumber(std::string_view cell, double& number);

}  // namespace dataloader
