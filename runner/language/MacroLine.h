#pragma once

#include <string_view>
#include <vector>

#include "language/Descriptions.h"
#include "language/Diagnostic.h"

namespace vexa::runner {

/// An option as a line has it.
struct WrittenOption {
    const OptionDescription* description = nullptr;  ///< null if the command has no such option
    Span name;
    Span value;             ///< with its quotes or brackets; empty if it is missing
    Span rest;              ///< what follows the value without a blank, although the add-on expects one
    bool hasAssign = true;  ///< false if there is no equals sign
    bool isTight = false;   ///< true if there are no blanks around the equals sign
    bool isOpen = false;    ///< true if the closing quote or bracket is missing
};

/// The parts of a line of a macro file, read as the add-on reads it. Blank lines and comments have no parts.
///
///     STATS MEAN ZONES = [1-3] LOUD = T      id STATS, word MEAN, options ZONES and LOUD
///
/// The description of an option decides where its value ends: `'a b'` is one value of a String, but two words for any
/// other type. Without a description, the first character of the value decides.
struct MacroLine {
    Span id;
    Span word;
    std::vector<WrittenOption> options;
    const AddOnDescription* addOn = nullptr;      ///< null if it is not described
    const CommandDescription* command = nullptr;  ///< null if it is not described; then there are no options

    bool isCommand() const { return !id.isEmpty(); }
};

/// Reads \p line, which has no line end. The result refers to \p descriptions.
MacroLine parseLine(std::string_view line, const Descriptions& descriptions);

/// Returns the text of \p span in \p line.
inline std::string_view textOf(Span span, std::string_view line) {
    return line.substr(span.begin, span.end - span.begin);
}

}  // namespace vexa::runner
