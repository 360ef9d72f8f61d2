#pragma once

#include <string>
#include <vector>

#include "vexastandin/Host.h"

namespace vexa::runner {

/// Returns a macro file that runs \p commands again. The same commands give the same text.
std::string recordingText(const std::vector<standin::RecordedCommand>& commands);

/// Returns the line of one command in recordingText().
std::string recordingLine(const standin::RecordedCommand& recorded);

/// Returns a macro file with the commands of \p entries, each with its journal data as comments.
///
///     STATS LOAD FILE = 'wake.txt'
///     #   rows=128
///     #   columns=3
std::string journalText(const std::vector<standin::JournalEntry>& entries);

/// Returns the lines of one entry in journalText().
std::string journalLines(const standin::JournalEntry& entry);

}  // namespace vexa::runner
