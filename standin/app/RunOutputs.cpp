#include "RunOutputs.h"

#include <cstddef>

#include "Console.h"
#include "MacroText.h"

namespace vexa::runner {
namespace {

bool replace(AtomicFile& file, const std::string& text, std::size_t count, const char* how, std::string& summary) {
    try {
        file.replace(text);
    } catch (const OutputError& error) {
        tell(error.what());
        return false;
    }
    summary += "; " + std::to_string(count) + ' ' + how + " in " + file.path();
    return true;
}

}  // namespace

void RunOutputs::open(const std::optional<std::string>& recordFile, const std::optional<std::string>& journalFile) {
    if (recordFile) m_record.emplace(*recordFile);
    if (journalFile) m_journal.emplace(*journalFile);
    const bool same = m_record && m_journal && m_record->target() == m_journal->target();
    if (same) throw OutputError(*journalFile + ": cannot hold both the recording and the journal");
}

bool RunOutputs::write(const standin::Host& host, std::string& summary) {
    bool written = true;
    if (m_record) {
        const auto commands = host.recordedCommands();
        written &= replace(*m_record, recordingText(commands), commands.size(), "recorded", summary);
    }
    if (m_journal) {
        const auto entries = host.journalEntries();
        written &= replace(*m_journal, journalText(entries), entries.size(), "journaled", summary);
    }
    return written;
}

}  // namespace vexa::runner
