#include "trace/TraceLines.h"

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

std::string lineAt(std::size_t thread, std::size_t depth, const std::string& text) {
    std::string line = std::to_string(thread) + std::string(kIndentation);
    for (std::size_t i = 0; i != depth; ++i) line += kIndentation;
    return line + printableLine(text) + '\n';  // texts of add-ons may have line feeds
}

}  // namespace

std::string TraceLines::entryBegan(const EntryEvent& entry) {
    return lineAt(entry.threadNumber, m_depth++, startOf(entry));
}

std::string TraceLines::entryEnded(const EntryEvent& entry) {
    return lineAt(entry.threadNumber, m_depth--, endOf(entry));
}

void TraceLines::callBegan() { ++m_calling[EventThread::current()].open; }

std::string TraceLines::callEnded(const CallEvent& call) {
    Calling& calling = m_calling[EventThread::current()];
    const std::size_t depth = m_depth + --calling.open;
    std::string lines = lineAt(call.threadNumber, depth, lineOf(call));
    for (const std::string& finding : calling.findings) lines += lineAt(call.threadNumber, depth + 1, finding);
    calling.findings.clear();
    if (calling.open == 0) m_calling.erase(EventThread::current());
    return lines;
}

std::string TraceLines::findingMade(const Finding& finding) {
    const auto calling = m_calling.find(EventThread::current());
    if (calling == m_calling.end()) return lineAt(finding.seen.thread, m_depth, lineOf(finding));
    calling->second.findings.push_back(lineOf(finding));
    return "";
}

}  // namespace vexa::runner
