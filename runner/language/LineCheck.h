#pragma once

#include <string_view>
#include <vector>

#include "language/Descriptions.h"
#include "language/Diagnostic.h"

namespace vexa::runner {

/// Returns the mistakes in one line of a macro file, which has no line end, by \p descriptions. No add-on is loaded. A
/// line does not depend on other lines, so an editor checks only the lines that change.
///
/// Each mistake is reported once: an unknown command hides its options, and a wrong value its range.
std::vector<Diagnostic> checkLine(std::string_view line, const Descriptions& descriptions);

/// Returns the part of \p line, a line of a macro file, that holds the command: without the carriage return at the end,
/// and in the first line without a byte-order mark.
Span commandPart(std::string_view line, bool isFirst);

/// Returns the mistakes in the commandPart() of \p line, with their spans in the whole line.
std::vector<Diagnostic> checkFileLine(std::string_view line, bool isFirst, const Descriptions& descriptions);

/// Returns the mistakes in the text of a macro file, line by line. Lines end with LF or CRLF; a byte-order mark at the
/// start is skipped.
std::vector<Diagnostic> checkText(std::string_view text, const Descriptions& descriptions);

/// Returns the mistakes in \p command, a command of \p addOn without its id. The spans are those in a line with the id.
std::vector<Diagnostic> checkCommand(std::string_view command, const AddOnDescription& addOn);

}  // namespace vexa::runner
