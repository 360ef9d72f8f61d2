#include "trace/TextTrace.h"

#include <string_view>

#include "text/Printable.h"
#include "trace/EntryText.h"
#include "trace/EventThread.h"

namespace vexa::runner {
namespace {

using standin::CallEvent;
using standin::Entry_e;
using standin::EntryEvent;
using standin::Finding;

constexpr std::string_view kIndentation = "  ";

std::string startOf(const EntryEvent& entry) {
    const bool hasPlace = entry.kind == Entry_e::Command && !entry.macroLine.empty();
    return (hasPlace ? entry.macroLine + ": " : "") + beginningOf(entry);
}

void write(LiveFile& file, std::size_t thread, std::size_t depth, const std::string& text) {
    std::string line = std::to_string(thread) + std::string(kIndentation);
    for (std::size_t i = 0; i != depth; ++i) line += kIndentation;
    file.append(line + printableLine(text) + '\n');  // texts of add-ons may have line feeds
}

}  // namespace

TextTrace::TextTrace(const std::string& path, Append_e how) : m_file(path, how) {
    m_file.write([](LiveFile& file) { file.append(kTextTraceHead + std::string("\n")); });
}

void TextTrace::entryBegan(const EntryEvent& entry) {
    m_file.write([&](LiveFile& file) { write(file, entry.threadNumber, m_depth++, startOf(entry)); });
}

void TextTrace::entryEnded(const EntryEvent& entry) {
    m_file.write([&](LiveFile& file) { write(file, entry.threadNumber, m_depth--, endOf(entry)); });
}

void TextTrace::callBegan(const CallEvent&) {
    m_file.write([&](LiveFile&) { ++m_calling[EventThread::current()].open; });
}

void TextTrace::callEnded(const CallEvent& call) {
    m_file.write([&](LiveFile& file) {
        Calling& calling = m_calling[EventThread::current()];
        const std::size_t depth = m_depth + --calling.open;
        write(file, call.threadNumber, depth, lineOf(call));
        for (const std::string& finding : calling.findings) write(file, call.threadNumber, depth + 1, finding);
        calling.findings.clear();
        if (calling.open == 0) m_calling.erase(EventThread::current());
    });
}

void TextTrace::findingMade(const Finding& finding) {
    m_file.write([&](LiveFile& file) {
        const auto calling = m_calling.find(EventThread::current());
        if (calling == m_calling.end()) return write(file, finding.seen.thread, m_depth, lineOf(finding));
        calling->second.findings.push_back(lineOf(finding));
    });
}

// Writes nothing, because the calls that change the status line are written.
void TextTrace::statusChanged(const standin::StatusLine&) {}

void TextTrace::finish(int exitStatus, const std::string& outcome) {
    m_file.finish([&](LiveFile& file) { file.append(kRunEnd + std::to_string(exitStatus) + ": " + outcome + '\n'); });
}

}  // namespace vexa::runner
