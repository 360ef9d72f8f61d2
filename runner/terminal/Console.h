#pragma once

#include <string>
#include <string_view>

#include "system/NonCopyable.h"

namespace vexa::runner {

// Whatever this program says leaves through these functions, which make it printable(): parts of it come from add-ons,
// macros and names of files, and must not steer the terminal. What add-ons print themselves is passed on as it is.

/// The program's name, as it stands before messages about nothing in particular.
inline constexpr const char* kProgramName = "vexa-standin";

/// Puts a message on the standard error output, after all that went to the standard output so far.
///
///     tell("sweep.macro:3: STATS", "no such zone\nzones are 1 to 4\n");
///     // sweep.macro:3: STATS: no such zone
///     //     zones are 1 to 4
///
/// Blanks and line feeds at the end of \p text are left away. When the user wants colour, the place has one, and so has
/// the word "error" or "warning" at the start of \p text.
void tell(const std::string& place, std::string_view text);

/// The same for a message that names its place itself.
void tell(std::string_view message);

/// The same for lines that are laid out already. Without a place they name it themselves.
void tellLines(std::string_view place, std::string_view lines);

/// The same for lines that a process of this program put on its standard error output: what it said is printable
/// already, and what its add-ons printed is theirs. They stay as they are.
void passOn(const std::string& lines);

/// Gets messages in the place of the standard error output.
class MessageSinkInterface : NonCopyable {
public:
    virtual ~MessageSinkInterface() = default;

    /// Shows \p lines after all that was printed so far. May be called from any thread.
    virtual void tell(const std::string& lines) = 0;
};

/// Sends messages to \p sink from now on; null for the standard error output, which is where they go at first.
void setMessageSink(MessageSinkInterface* sink);

/// Puts \p text on the standard output.
void print(std::string_view text);

/// \p text without the blanks and line ends at its end.
std::string_view withoutTrailingBlanks(std::string_view text);

}  // namespace vexa::runner
