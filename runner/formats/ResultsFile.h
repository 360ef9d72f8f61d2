#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "options/ExitStatus.h"
#include "session/watch/Notes.h"
#include "system/files/LiveFile.h"
#include "vexastandin/Host.h"

namespace vexa::runner {

/// What came of a command of a macro.
struct CommandOutcome {
    std::string place;  ///< `FILE:LINE`
    std::string addOnId;
    std::string command;
    bool accepted = false;
    std::string error;  ///< empty when it was accepted
    double seconds = 0;
};

/// The results of a run for other programs: a JSON object a line, one for each command, and a last one for the end.
/// Each is told as soon as it is known. docs/testing.md describes them.
class Results {
public:
    /// Tells \p notes from now on.
    void tellTo(NotesInterface& notes) { m_notes = &notes; }

    /// Adds a command, and the findings of \p host since the last one.
    void add(const CommandOutcome& outcome, const standin::Host& host);
    /// Adds the end, and the findings of \p host since the last command.
    void finish(ExitStatus_e status, const std::string& macroFile, const standin::Host& host);

private:
    NotesInterface* m_notes = nullptr;
    std::size_t m_findings = 0;  // that were told
};

/// The lines of the results for a run that an add-on ended: for the command that did, and for the end.
/// \param outcome the command; without an add-on it was no command, and gets no line.
std::string linesOfDeath(const CommandOutcome& outcome, ExitStatus_e status, const std::string& macroFile);

}  // namespace vexa::runner
