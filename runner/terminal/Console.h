#pragma once

#include <string>
#include <string_view>

#include "system/NonCopyable.h"

namespace vexa::runner {

// The program prints all its text by these functions. They make it printable(), because parts of it come from add-ons,
// macros and file names, and must not control the terminal. The output of add-ons is passed on unchanged.

/// The program's name. It is the place of a message that has no other place.
inline constexpr const char* kProgramName = "vexa-standin";

/// Prints a message on the standard error output, after everything printed on the standard output so far.
///
///     tell("sweep.macro:3: STATS", "no such zone\nzones are 1 to 4\n");
///     // sweep.macro:3: STATS: no such zone
///     //     zones are 1 to 4
///
/// Removes blanks and line feeds at the end of \p text. If the user wants colour, colours the place, and the word
/// "error" or "warning" at the start of \p text.
void tell(const std::string& place, std::string_view text);

/// Prints a message that starts with its own place.
void tell(std::string_view message);

/// Prints several lines as tell() does, without changing their layout. \p place may be empty.
void tellLines(std::string_view place, std::string_view lines);

/// Prints lines that another process of this program printed on its standard error output, unchanged: its messages are
/// already printable, and the output of its add-ons must not change.
void passOn(const std::string& lines);

/// Receives messages instead of the standard error output.
class MessageSinkInterface : NonCopyable {
public:
    virtual ~MessageSinkInterface() = default;

    /// Shows \p lines after everything printed so far. Any thread may call it.
    virtual void tell(const std::string& lines) = 0;
};

/// From now on messages go to \p sink; null for the standard error output, which is the default.
void setMessageSink(MessageSinkInterface* sink);

/// Prints \p text on the standard output.
void print(std::string_view text);

/// Returns \p text without the blanks and line ends at its end.
std::string_view withoutTrailingBlanks(std::string_view text);

}  // namespace vexa::runner
