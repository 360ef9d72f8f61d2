#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "language/Descriptions.h"
#include "language/Diagnostic.h"

namespace vexa::runner {

/// The part of a line that a help is about.
enum class LinePart_e { AddOn, Command, Option, Value };

/// The help for a place in a line.
struct LineHelp {
    LinePart_e part;
    Span span;           ///< the part in the line
    std::string title;   ///< the form of the command, or the option with its type
    std::string detail;  ///< a few lines of Markdown; may be empty
};

/// Returns the help for the byte \p at of \p line, which has no line end, from \p descriptions; nothing if they say
/// nothing about this place.
std::optional<LineHelp> helpAt(std::string_view line, std::size_t at, const Descriptions& descriptions);

}  // namespace vexa::runner
