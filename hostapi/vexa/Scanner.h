#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "vexa/Export.h"

namespace vexa {

/// Reads a text from its start to its end, as characters, tokens or numbers.
///
///     Scanner scanner;
///     scanner.reset("COUNT = 12");
///     scanner.nextToken();        // "COUNT"
///     scanner.skipWhitespace();
///     scanner.nextChar();         // '='
///     scanner.nextInt64Token();   // 12
///
/// White space is blank, tab, line feed, carriage return, vertical tab and form feed, in every locale. A token ends at
/// white space or at the end of the text. No other character ends it: `COUNT=12` is one token.
/// A `hasNext...` operation does not move the scanner. If a `hasNext...Token` operation returns false, the
/// `next...Token` operation of the same name does not move the scanner and returns an empty text or zero.
///
/// Numbers, in every locale:
///
///     12  -3  +7                    integers (signed, 64 bits, decimal) and doubles
///     .5  5.  1e-7  -2.5E+6         doubles, correctly rounded
///     inf  -Infinity  nan           doubles, in any letter case
///     0x10  1,5  12abc  1e  +-1     not numbers: the whole token must be a number
///     9223372036854775808           not an integer: it exceeds 64 bits
///     1e400                         not a double: it exceeds the largest one. 1e-400 is read as 0.
///
/// Threads: one thread at a time may use a scanner, even for its const operations.
/// Cost:    a `next...Token` operation reuses the result of its `hasNext...Token` operation, unless it searches for
///          more than one delimiter.
class VEXAHOSTLIBS_API Scanner {
public:
    /// Creates a scanner with an empty text.
    Scanner();
    Scanner(const Scanner&) = default;
    Scanner& operator=(const Scanner&) = default;
    ~Scanner();

    /// Copies \p text and moves to its first character.
    void reset(const std::string& text);

    /// Moves to the next character that is not white space, or to the end.
    void skipWhitespace();

    /// Returns true if a character is left.
    VEXAHOSTLIBS_API bool hasNextChar() const { return m_position < m_text.size(); }
    /// Returns true if the next character is \p c.
    bool hasNextChar(char c) const;
    /// Returns the next character, which may be white space, and moves past it. At the end it returns NUL and does not
    /// move.
    VEXAHOSTLIBS_API char nextChar() { return hasNextChar() ? m_text[m_position++] : '\0'; }

    /// Returns true if a token is left. Ignores white space before it.
    bool hasNextToken() const;
    /// Skips white space, returns the token and moves past it. If no token is left, it returns an empty text and does
    /// not move.
    std::string nextToken();

    /// Returns true if one of the characters in \p delimiters follows, with at least one other character before it.
    /// Does not ignore white space.
    bool hasNextToken(const std::string& delimiters) const;
    /// Returns the characters before the first one of \p delimiters, and moves to that delimiter. If no delimiter
    /// follows, it returns an empty text and does not move.
    std::string nextToken(const std::string& delimiters);

    /// Returns true if the next token is a floating-point number. Ignores white space before it.
    bool hasNextDoubleToken() const;
    /// Skips white space, returns the number and moves past it. If the next token is not a floating-point number, it
    /// returns 0 and does not move.
    double nextDoubleToken();

    /// Returns true if the next token is a signed 64-bit decimal integer. Ignores white space before it.
    bool hasNextInt64Token() const;
    /// Skips white space, returns the integer and moves past it. If the next token is not an integer, it returns 0 and
    /// does not move.
    int64_t nextInt64Token();

private:
    // The result of the last search for a number.
    template <typename Number>
    struct Found {
        std::size_t at = std::string::npos;  // where the search started; npos before the first search
        std::size_t end = 0;                 // the position after the number
        bool isNumber = false;
        Number value{};
    };

    const Found<double>& doubleHere() const;
    const Found<int64_t>& int64Here() const;

    std::string m_text;
    std::size_t m_position = 0;
    mutable Found<double> m_double;
    mutable Found<int64_t> m_int64;  // also keeps the last token found, see Scanner.cpp
};

}  // namespace vexa
