#include "commands/repl/LastCalls.h"

#include "text/Lines.h"

namespace vexa::runner {

void LastCalls::entryBegan(const standin::EntryEvent& entry) {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_isInCommand = entry.kind == standin::Entry_e::Command;
    if (m_isInCommand) {
        m_text.clear();
        m_kept = 0;
        m_leftOut = 0;
    }
    add(m_lines.entryBegan(entry));
}

void LastCalls::entryEnded(const standin::EntryEvent& entry) {
    const std::lock_guard<std::mutex> lock(m_guard);
    add(m_lines.entryEnded(entry));
    m_isInCommand = false;
}

void LastCalls::callBegan(const standin::CallEvent&) {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_lines.callBegan();
}

void LastCalls::callEnded(const standin::CallEvent& call) {
    const std::lock_guard<std::mutex> lock(m_guard);
    add(m_lines.callEnded(call));
}

void LastCalls::findingMade(const standin::Finding& finding) {
    const std::lock_guard<std::mutex> lock(m_guard);
    add(m_lines.findingMade(finding));
}

std::string LastCalls::text() const {
    const std::lock_guard<std::mutex> lock(m_guard);
    if (m_leftOut == 0) return m_text;
    return m_text + "and " + std::to_string(m_leftOut) +
           " more lines; 'vexa-standin run --trace-text FILE' writes all of them\n";
}

// A thread that the add-on has left running may call the host between commands.
void LastCalls::add(const std::string& lines) {
    if (!m_isInCommand) return;
    for (const std::string& line : linesOf(lines)) {
        if (m_kept == kMostLines) {
            ++m_leftOut;
        } else {
            ++m_kept;
            m_text += line + '\n';
        }
    }
}

}  // namespace vexa::runner
