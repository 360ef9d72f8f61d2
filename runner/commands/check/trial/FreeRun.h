#pragma once

#include <string_view>
#include <vector>

#include "commands/check/trial/Trial.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {

/// Returns true if a macro file can have a command with this text.
inline bool fitsMacroLine(std::string_view text) {
    return !text.empty() && text.front() != ' ' && text.front() != '\t' &&
           text.find_first_of(std::string_view("\n\r\0", 3)) == std::string_view::npos;
}

/// Runs \p steps in a new session. They may be any texts, and may fail. The stop button is pressed after some steps of
/// a task, because a damaged number can make a task endless. The commands that the last step recorded are played back
/// in another session, after the same steps. \return the findings, including those of the unloading.
std::vector<standin::Finding> findingsOf(Trial& trial, const std::vector<MacroCommand>& steps);

}  // namespace vexa::runner
