#include "trace/TextTrace.h"

#include "trace/EntryText.h"

namespace vexa::runner {

using standin::CallEvent;
using standin::EntryEvent;
using standin::Finding;

TextTrace::TextTrace(const std::string& path, Append_e how) : m_file(path, how) {
    m_file.write([](LiveFile& file) { file.append(kTextTraceHead + std::string("\n")); });
}

void TextTrace::entryBegan(const EntryEvent& entry) {
    m_file.write([&](LiveFile& file) { file.append(m_lines.entryBegan(entry)); });
}

void TextTrace::entryEnded(const EntryEvent& entry) {
    m_file.write([&](LiveFile& file) { file.append(m_lines.entryEnded(entry)); });
}

void TextTrace::callBegan(const CallEvent&) {
    m_file.write([&](LiveFile&) { m_lines.callBegan(); });
}

void TextTrace::callEnded(const CallEvent& call) {
    m_file.write([&](LiveFile& file) { file.append(m_lines.callEnded(call)); });
}

void TextTrace::findingMade(const Finding& finding) {
    m_file.write([&](LiveFile& file) { file.append(m_lines.findingMade(finding)); });
}

// Writes nothing, because the calls that change the status line are written.
void TextTrace::statusChanged(const standin::StatusLine&) {}

void TextTrace::finish(int exitStatus, const std::string& outcome) {
    m_file.finish([&](LiveFile& file) { file.append(kRunEnd + std::to_string(exitStatus) + ": " + outcome + '\n'); });
}

}  // namespace vexa::runner
