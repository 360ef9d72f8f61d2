#include "trace/EntryText.h"

#include <filesystem>

namespace vexa::runner {
namespace {

using standin::Entry_e;

// Omits the folder, which differs between machines.
std::string fileNameOf(const std::string& path) { return std::filesystem::path(path).filename(); }

}  // namespace

std::string beginningOf(const standin::EntryEvent& entry) {
    if (entry.kind == Entry_e::Loading) return "load " + fileNameOf(entry.addOnId);
    if (entry.kind == Entry_e::Unloading) return "unload " + entry.addOnId;
    return entry.addOnId + ' ' + entry.command;
}

std::string endOf(const standin::EntryEvent& entry) {
    if (!entry.succeeded) return entry.error.empty() ? "=> failed" : "=> failed: " + entry.error;
    if (entry.kind == Entry_e::Loading) return "=> loaded " + entry.addOnId;
    return entry.kind == Entry_e::Command ? "=> accepted" : "=> unloaded";
}

std::string lineOf(const standin::CallEvent& call) {
    const std::string line = std::string(call.function) + '(' + call.arguments + ')';
    if (call.threw) return line + " threw";
    return call.result.empty() ? line : line + " = " + call.result;
}

std::string lineOf(const standin::Finding& finding) {
    std::string line = std::string(kFindingMark) + nameOf(finding.severity) + ": ";
    line += finding.message + " [" + finding.rule + ']';
    if (!finding.opened) return line;
    line += kFirstPlace + (finding.opened->function.empty() ? "the beginning" : finding.opened->function);
    if (!finding.opened->macroLine.empty()) line += ", " + finding.opened->macroLine;
    return line + ')';
}

}  // namespace vexa::runner
