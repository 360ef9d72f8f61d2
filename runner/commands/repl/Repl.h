#pragma once

#include <optional>
#include <string>

#include "options/ExitStatus.h"
#include "session/Session.h"
#include "session/watch/Notes.h"

namespace vexa::runner {

/// The options of the command `repl`.
struct ReplOptions : SessionOptions {
    std::optional<std::string> record;
};

/// \name Notes of a Repl, in addition to those of RunOutputs
/// @{
inline constexpr char kLineNote = 'l';      ///< asks for a line; the note has the words for completion, one per line
inline constexpr char kReloadNote = 'R';    ///< the user has asked to load the add-ons again
inline constexpr char kFindingsNote = 'k';  ///< findings to keep, because the process ends and the session goes on
inline constexpr char kEarlierNote = 'F';   ///< asks for the findings that were kept
/// @}

inline constexpr char kLineRead = 'y';  ///< the first character of an answer with a line

/// Why add-ons are loaded.
enum class Load_e {
    First,  ///< the session starts; an add-on that cannot be loaded ends it
    Again   ///< the user has asked to load the add-ons again; the session goes on with those that can be loaded
};

/// Runs the commands that the user types, until the end of the session or until the user asks to load the add-ons
/// again.
/// \param box   receives what the add-ons are doing.
/// \param notes answers with the lines, and receives the recording and the findings.
ExitStatus_e runRepl(const ReplOptions& options, Load_e load, ProcessBox& box, NotesInterface& notes);

}  // namespace vexa::runner
