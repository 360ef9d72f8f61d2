#pragma once

#include <string>

#include "formats/CommandDescription.h"

namespace vexa::runner {

// Texts about commands and options. Names and values in them are between backticks, as in Markdown.

/// Returns \p text without the backticks, for a place that shows no Markdown.
std::string withoutMarks(std::string text);

/// Returns the type of an option with its limits: "Int64, 1 to 100", "text, not empty", "`fast` or `slow`".
std::string typeText(const OptionDescription& option);

/// Returns what holds without the option: "required", its default, or what the command does.
std::string defaultText(const OptionDescription& option, CommandKind_e kind);

/// Returns the form of a command: `STATS MEAN FILE = text [ZONES = set]...`. Brackets are around an option that may be
/// omitted; dots follow one that may be repeated.
std::string syntaxText(const AddOnDescription& addOn, const CommandDescription& command);

}  // namespace vexa::runner
