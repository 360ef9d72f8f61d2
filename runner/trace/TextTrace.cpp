#include "trace/TextTrace.h"

#include <filesystem>
#include <string_view>

#include "text/Printable.h"
#include "text/SeverityName.h"
#include "trace/EventThread.h"

namespace vexa::runner {
namespace {

using standin::CallEvent;
using standin::Entry_e;
using standin::EntryEvent;
using standin::Finding;

constexpr const char* kHead = "# thread, then commands, and their calls of the host with arguments and results\n";
constexpr std::string_view kIndentation = "  ";

// Without the folder, which differs between machines.
std::string fileNameOf(const std::string& path) { return std::filesystem::path(path).filename(); }

std::string beginningOf(const EntryEvent& entry) {
    if (entry.kind == Entry_e::Loading) return "load " + fileNameOf(entry.addOnId);
    if (entry.kind == Entry_e::Unloading) return "unload " + entry.addOnId;
    return (entry.macroLine.empty() ? "" : entry.macroLine + ": ") + entry.addOnId + ' ' + entry.command;
}

std::string endOf(const EntryEvent& entry) {
    if (!entry.succeeded) return entry.error.empty() ? "=> failed" : "=> failed: " + entry.error;
    if (entry.kind == Entry_e::Loading) return "=> loaded " + entry.addOnId;
    return entry.kind == Entry_e::Command ? "=> accepted" : "=> unloaded";
}

std::string lineOf(const CallEvent& call) {
    const std::string line = std::string(call.function) + '(' + call.arguments + ')';
    if (call.threw) return line + " threw";
    return call.result.empty() ? line : line + " = " + call.result;
}

// The position of the line shows where the finding was made.
std::string lineOf(const Finding& finding) {
    std::string line = std::string("! ") + nameOf(finding.severity) + ": ";
    line += finding.message + " [" + finding.rule + ']';
    if (!finding.opened) return line;
    line += " (first: " + (finding.opened->function.empty() ? "the beginning" : finding.opened->function);
    if (!finding.opened->macroLine.empty()) line += ", " + finding.opened->macroLine;
    return line + ')';
}

void write(LiveFile& file, std::size_t thread, std::size_t depth, const std::string& text) {
    std::string line = std::to_string(thread) + std::string(kIndentation);
    for (std::size_t i = 0; i != depth; ++i) line += kIndentation;
    file.append(line + printableLine(text) + '\n');  // texts of add-ons may have line feeds
}

}  // namespace

TextTrace::TextTrace(const std::string& path) : m_file(path) {
    m_file.write([](LiveFile& file) { file.append(kHead); });
}

void TextTrace::entryBegan(const EntryEvent& entry) {
    m_file.write([&](LiveFile& file) { write(file, entry.threadNumber, m_depth++, beginningOf(entry)); });
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

// The calls that change it are written.
void TextTrace::statusChanged(const standin::StatusLine&) {}

void TextTrace::finish(int exitStatus, const std::string& outcome) {
    m_file.finish(
        [&](LiveFile& file) { file.append("=> exit status " + std::to_string(exitStatus) + ": " + outcome + '\n'); });
}

}  // namespace vexa::runner
