#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "vexa/Export.h"

namespace vexa {

/// Reads a text from front to back: by character, by token, by number.
///
///     Scanner scanner;
///     scanner.reset("COUNT = 12");
///     scanner.nextToken();        // "COUNT"
///     scanner.skipWhitespace();
///     scanner.nextChar();         // '='
///     scanner.nextInt64Token();   // 12
///
/// White space is blank, tab, line feed, carriage return, vertical tab and form feed, in every locale. A token ends
/// at white space or at the end of the text, and nowhere else: `COUNT=12` is one token.
/// The `hasNext...` operations never advance. A `next...Token` operation whose `hasNext...` twin is false changes
/// nothing and returns an empty text or zero.
///
/// Numbers, in every locale:
///
///     12  -3  +7                    integers (signed, 64 bits, decimal) and doubles
///     .5  5.  1e-7  -2.5E+6         doubles, correctly rounded
///     inf  -Infinity  nan           doubles, in any letter case
///     0x10  1,5  12abc  1e  +-1     no numbers: the whole token must be one
///     9223372036854775808           no integer: over 64 bits
///     1e400                         no double: over the largest; 1e-400 is read as 0
///
/// Threads: one scanner is for one thread at a time, also for the operations that are const.
/// Cost:    next...Token() does not search again for what hasNext...Token() found, except a token before one of
///          several delimiters.
class VEXAHOSTLIBS_API Scanner {
public:
    /// Makes a scanner over an empty text.
    Scanner();
    Scanner(const Scanner&) = default;
    Scanner& operator=(const Scanner&) = default;
    ~Scanner();

    /// Starts over, on a copy of \p text, at its first character.
    void reset(const std::string& text);

    /// Moves to the next character that is no white space, or to the end.
    void skipWhitespace();

    /// Whether a character is left.
    VEXAHOSTLIBS_API bool hasNextChar() const { return m_position < m_text.size(); }
    /// Whether the next character is \p c.
    bool hasNextChar(char c) const;
    /// Returns the next character, white space included, and moves past it. At the end: returns NUL and stays.
    VEXAHOSTLIBS_API char nextChar() { return hasNextChar() ? m_text[m_position++] : '\0'; }

    /// Whether, after white space, a token is left.
    bool hasNextToken() const;
    /// Skips white space, returns the token and moves past it. Returns an empty text, and stays, when none is left.
    std::string nextToken();

    /// Whether one or more characters are left before the first one of \p delimiters; false when none of those
    /// follows. White space is not skipped.
    bool hasNextToken(const std::string& delimiters) const;
    /// Returns the characters before the first one of \p delimiters, which stays unread. Returns an empty text, and
    /// stays, when none of those follows.
    std::string nextToken(const std::string& delimiters);

    /// Whether, after white space, the next token is a floating-point number.
    bool hasNextDoubleToken() const;
    /// Skips white space, reads the number and moves past it.
    double nextDoubleToken();

    /// Whether, after white space, the next token is a signed 64-bit decimal integer.
    bool hasNextInt64Token() const;
    /// Skips white space, reads the integer and moves past it.
    int64_t nextInt64Token();

private:
    // What stands at a position, as a number.
    template <typename Number>
    struct Found {
        std::size_t at = std::string::npos;  // the position; none yet
        std::size_t end = 0;                 // where the text goes on behind the number
        bool isNumber = false;
        Number value{};
    };

    const Found<double>& doubleHere() const;
    const Found<int64_t>& int64Here() const;

    std::string m_text;
    std::size_t m_position = 0;
    mutable Found<double> m_double;
    mutable Found<int64_t> m_int64;  // or a token
};

}  // namespace vexa
