#pragma once

#include <string>
#include <string_view>

namespace vexa::runner {

/// The program's name, as it stands before messages about nothing in particular.
inline constexpr const char* kProgramName = "vexa-standin";

/// Puts a message on the standard error output, after all that went to the standard output so far.
///
///     tell("sweep.macro:3: STATS", "no such zone\nzones are 1 to 4\n");
///     // sweep.macro:3: STATS: no such zone
///     //     zones are 1 to 4
///
/// Blanks and line feeds at the end of \p text are left away.
void tell(const std::string& place, std::string_view text);

/// The same for a message that names its place itself.
void tell(std::string_view message);

/// The same for lines that are laid out already.
void tellLines(const std::string& lines);

/// \p text without the blanks and line ends at its end.
std::string_view withoutTrailingBlanks(std::string_view text);

}  // namespace vexa::runner
