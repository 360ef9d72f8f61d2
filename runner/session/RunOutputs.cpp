#include "session/RunOutputs.h"

#include "formats/MacroText.h"
#include "session/CoverageNotes.h"
#include "session/ProblemOutputs.h"
#include "terminal/Console.h"

namespace vexa::runner {

void RunOutputs::open(const std::optional<std::string>& recordFile, const std::optional<std::string>& journalFile) {
    if (recordFile) m_record = Output{WholeOutput(*recordFile), recordingText({}), "recorded"};
    if (journalFile) m_journal = Output{WholeOutput(*journalFile), journalText({}), "journaled"};
}

void RunOutputs::tell(char kind, std::string_view text) {
    const std::lock_guard<std::mutex> lock(m_guard);
    switch (kind) {
        case kRecordedNote: return add(m_record, text);
        case kJournaledNote: return add(m_journal, text);
        case kResultNote: return m_results(text);
        case kProblemNote: m_problems.push_back(unpackedProblem(text)); return;
        case kEndNote:
            m_end = text;
            if (!m_keepsEndBack) tellEnd();
            return;
        case kCoverageNote: return addCoverageNote(m_coverage, text);
        case kBeganNote: m_isLeft = true; return;
        default: return;
    }
}

std::string RunOutputs::ask(char kind, std::string_view) {
    const std::lock_guard<std::mutex> lock(m_guard);
    std::string summary;
    if (kind != kWriteNote || !write(summary)) return "";
    return kWritten + summary;
}

bool RunOutputs::writeWhatIsLeft() {
    const std::lock_guard<std::mutex> lock(m_guard);
    std::string summary;
    return !m_isLeft || write(summary);
}

bool RunOutputs::write(std::string& summary) {
    m_isLeft = false;
    bool written = true;
    for (auto* output : {&m_record, &m_journal}) {
        if (!*output) continue;
        try {
            (*output)->file.replace((*output)->text);
            summary += "; " + std::to_string((*output)->count) + ' ' + (*output)->how + " in " + (*output)->file.path();
        } catch (const OutputError& error) {
            runner::tell(error.what());
            written = false;
        }
    }
    return written;
}

void RunOutputs::add(std::optional<Output>& output, std::string_view lines) {
    if (!output) return;
    output->text += lines;
    ++output->count;
}

}  // namespace vexa::runner
