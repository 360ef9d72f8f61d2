/// \file
/// The tokens of macro text, and the first two steps of parsing an option: its name and the `=`.
///
/// MacroCommandAbstract::tokenize() splits a text into tokens. Each of the eight characters blank `=` `"` `'` `-` `,`
/// `[` `]` is a token. All characters between two of these form one token. No character is dropped, so all tokens
/// joined are the text:
///
///     CMD ENABLED=TRUE  ->  CMD | blank | ENABLED | = | TRUE
///     ZONES=[1-3,5]     ->  ZONES | = | [ | 1 | - | 3 | , | 5 | ]
///     A<tab>B           ->  A<tab>B    (a tab is an ordinary character)
///
/// An option is written NAME=VALUE, with no blanks around the `=`. A parser takes two token iterators, `current` and
/// `end`, and moves `current` past the tokens that it reads. If it throws, `current` is at the offending token. Parsers
/// do not skip blanks: the caller must skip the blanks between options.
///
/// Threads: the functions share no state. One thread at a time may use a pair of iterators.
#pragma once

#include <boost/tokenizer.hpp>
#include <string>

#include "vexautilutil/Export.h"

namespace vexa::vexautilutil {

/// Holds the characters that separate tokens.
using MacroTokenSeparator = boost::char_separator<char>;
/// The tokens of a text. It refers to the characters of the text, so the text must outlive it.
using MacroTokenizer = boost::tokenizer<MacroTokenSeparator>;
/// An iterator over the tokens of a text. At the end it still holds the last token.
using MacroTokenIterator = boost::token_iterator<MacroTokenSeparator, std::string::const_iterator, std::string>;

/// Reads the name of an option: a letter, then letters and digits. The process's C locale defines letters and digits.
///
///     Count -> "Count"    A1 -> "A1"    1A, MY_OPT, A.B, a blank -> refused
///
/// \param current the name's token; it is moved past the name.
/// \param end     the end of the stream.
/// \return the name exactly as written.
/// \throws MacroCommandError "Invalid macro identifier, " + the token. At the end of the stream the message has the
///         last token of the text, or no token if there was none.
VEXAUTILUTIL_API std::string parseIdentifier(MacroTokenIterator& current, const MacroTokenIterator& end);

/// Reads the `=` between an option's name and its value.
/// \param current the operator's token; it is moved past the operator.
/// \param end     the end of the stream.
/// \return the operator, always "=".
/// \throws MacroCommandError
///         - "Expected assignment operator" at the end of the stream;
///         - "Expected assignment operator, but found " + the token (a single blank, for example) if another token
///           follows.
VEXAUTILUTIL_API std::string parseAssignmentOperator(MacroTokenIterator& current, const MacroTokenIterator& end);

}  // namespace vexa::vexautilutil
