#include "session/CoverageNotes.h"

#include "coverage/CoverageFile.h"

namespace vexa::runner {

CoverageSetting coverageSettingOf(const ContractOptions& options) {
    return {options.isStrict(), options.timeout.has_value(), options.suppressed, {}};
}

std::function<void(std::string_view)> coverageTeller(NotesInterface& notes) {
    return [&notes](std::string_view text) { notes.tell(kCoverageNote, text); };
}

void CoverageReceiver::tell(char kind, std::string_view text) {
    if (kind == kCoverageNote) addCoverageNote(m_coverage, text);
}

void addCoverageNote(Coverage& coverage, std::string_view text) {
    try {
        merge(coverage, coverageIn(std::string(text), ""));
    } catch (const CoverageError&) {
        return;  // an add-on wrote to the connection of the two processes; the other notes still count
    }
}

}  // namespace vexa::runner
