#include "vexastandin/Finding.h"

namespace vexa::standin {
namespace {

// Texts may have several lines. All lines but the first start with `lineStart`.
std::string indentedBy(const std::string& text, const char* lineStart) {
    std::string lines;
    for (const char c : text) lines += c == '\n' ? lineStart : std::string(1, c);
    return lines;
}

std::string indented(const std::string& text) { return indentedBy(text, "\n    "); }

// If the place is not a call, `moment` says which part of the command it is: "the beginning" or "the end".
std::string textOf(const Place& place, const std::string& moment) {
    if (place.call == 0 && place.command.empty()) return "";
    std::string text;
    if (place.call != 0) text = "call " + std::to_string(place.call) + ", " + place.function;
    if (!place.command.empty()) text += (text.empty() ? moment + " of \"" : ", in \"") + place.command + '"';
    if (!place.macroLine.empty()) text += ", " + place.macroLine;
    if (place.thread != 0) text += ", thread " + std::to_string(place.thread);
    if (!place.source.text.empty()) text += "\n       " + indentedBy(place.source.text, "\n       ");
    return text;
}

// The first line, without its line feed.
std::string headOf(const Finding& finding) {
    std::string text;
    if (!finding.seen.macroLine.empty()) text += finding.seen.macroLine + ": ";
    if (!finding.addOnId.empty()) text += finding.addOnId + ": ";
    text += nameOf(finding.severity);
    return text + ": " + indented(finding.message) + " [" + finding.rule + ']';
}

}  // namespace

std::string textOf(const Finding& finding) {
    std::string text = headOf(finding) + '\n';
    if (finding.opened) text += "    first: " + indented(textOf(*finding.opened, "the beginning")) + '\n';
    const std::string seen = textOf(finding.seen, "the end");
    if (!seen.empty()) text += "    seen:  " + indented(seen) + '\n';
    if (const Rule* const rule = findRule(finding.rule)) text += std::string("    hint:  ") + rule->hint + '\n';
    if (finding.repeats != 0) text += "    and " + std::to_string(finding.repeats) + " more of the same rule\n";
    return text;
}

std::string briefTextOf(const Finding& finding) { return headOf(finding) + ", as before\n"; }

bool FindingCauses::add(const Finding& finding) {
    const std::string opened = finding.opened ? finding.opened->function : "";
    return m_causes.insert({finding.rule, finding.addOnId, opened, finding.seen.function}).second;
}

}  // namespace vexa::standin
