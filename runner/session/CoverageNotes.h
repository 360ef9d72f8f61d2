#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "coverage/Coverage.h"
#include "coverage/CoverageCollector.h"
#include "options/ContractOptions.h"
#include "session/watch/Notes.h"

namespace vexa::runner {

/// A note with new facts of the coverage. Its text is the text of a coverage file.
inline constexpr char kCoverageNote = 'c';

/// What counts in a session with \p options.
CoverageSetting coverageSettingOf(const ContractOptions& options);

/// Returns the function with which a CoverageObserver sends its notes. \p notes must outlive it.
std::function<void(std::string_view)> coverageTeller(NotesInterface& notes);

/// Adds the facts of notes in the same process to \p coverage, and ignores other notes.
class CoverageReceiver : public NotesInterface {
public:
    explicit CoverageReceiver(Coverage& coverage) : m_coverage(coverage) {}

    void tell(char kind, std::string_view text) override;
    std::string ask(char, std::string_view) override { return ""; }

private:
    Coverage& m_coverage;
};

/// Adds the facts of a note. Ignores a note that an add-on has damaged.
void addCoverageNote(Coverage& coverage, std::string_view text);

}  // namespace vexa::runner
