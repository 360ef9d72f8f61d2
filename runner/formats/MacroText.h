#pragma once

#include <string>
#include <vector>

#include "vexastandin/Host.h"

namespace vexa::runner {

/// The macro file that runs \p commands again. The same commands give the same text.
std::string recordingText(const std::vector<standin::RecordedCommand>& commands);

/// What recordingText() has of one command, after its head.
std::string recordingLine(const standin::RecordedCommand& recorded);

/// \p entries for people to read: each command, then its journal data as comments. It is a macro file, too.
///
///     STATS LOAD FILE = 'wake.txt'
///     #   rows=128
///     #   columns=3
std::string journalText(const std::vector<standin::JournalEntry>& entries);

/// What journalText() has of one entry, after its head.
std::string journalLines(const standin::JournalEntry& entry);

}  // namespace vexa::runner
