/// \file
/// Macro text as a stream of tokens, and the two steps with which the parser of every option begins.
///
/// MacroCommandAbstract::tokenize() cuts a text into tokens. Each of the eight characters blank `=` `"` `'` `-` `,`
/// `[` `]` is a token of its own; each longest run of other characters is one token. Nothing is dropped, so the
/// tokens joined give the text back:
///
///     CMD ENABLED=TRUE  ->  CMD | blank | ENABLED | = | TRUE
///     ZONES=[1-3,5]     ->  ZONES | = | [ | 1 | - | 3 | , | 5 | ]
///     A<tab>B           ->  A<tab>B    (a tab is an ordinary character)
///
/// An option is written NAME=VALUE, with no blanks around the `=`. Parsers take a pair of token iterators, `current`
/// and `end`. They advance `current` past what they read; when they throw, `current` designates the offending token.
/// They do not skip blanks: whoever walks a whole command steps over the blanks between its options.
///
/// Threads: no shared state. An iterator pair is for one thread at a time.
#pragma once

#include <boost/tokenizer.hpp>
#include <string>

#include "vexautilutil/Export.h"

namespace vexa::vexautilutil {

/// Says which characters separate tokens.
using MacroTokenSeparator = boost::char_separator<char>;
/// A text seen as a stream of tokens. Refers to the text's characters: the text must outlive it.
using MacroTokenizer = boost::tokenizer<MacroTokenSeparator>;
/// Walks the tokens of a text. Once exhausted, it still holds the last token it delivered.
using MacroTokenIterator = boost::token_iterator<MacroTokenSeparator, std::string::const_iterator, std::string>;

/// Reads the name of an option: a letter, then letters and digits (of the process's C locale).
///
///     Count -> "Count"    A1 -> "A1"    1A, MY_OPT, A.B, a blank -> refused
///
/// \param current where to read; past the name afterwards.
/// \param end     the end of the stream.
/// \return the name as written: nothing is trimmed, no letter case changed.
/// \throws MacroCommandError "Invalid macro identifier, " + the token; at the end of the stream + the last token
///         that the iterator delivered, or nothing if there was none.
VEXAUTILUTIL_API std::string parseIdentifier(MacroTokenIterator& current, const MacroTokenIterator& end);

/// Reads the `=` between an option's name and its value.
/// \param current where to read; past the operator afterwards.
/// \param end     the end of the stream.
/// \return the operator, always "=".
/// \throws MacroCommandError "Expected assignment operator" at the end of the stream; "Expected assignment operator,
///         but found " + the token (which may be a single blank) at anything else.
VEXAUTILUTIL_API std::string parseAssignmentOperator(MacroTokenIterator& current, const MacroTokenIterator& end);

}  // namespace vexa::vexautilutil
