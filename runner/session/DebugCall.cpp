#include "session/DebugCall.h"

#include "system/files/StandardStreams.h"
#include "terminal/Console.h"
#include "text/Seconds.h"
#include "text/ShellWord.h"

namespace vexa::runner {
namespace {

using Words = std::vector<std::string>;

void add(Words& words, const std::string& option, const std::string& value) {
    words.push_back(option);
    words.push_back(value);
}

void addSwitch(Words& words, const std::string& name, const std::optional<bool>& isOn) {
    if (isOn) words.push_back((*isOn ? "--" : "--no-") + name);
}

std::string numberOf(std::chrono::duration<double> time) {
    const std::string text = secondsText(time);
    return text.substr(0, text.find(' '));
}

// A word that the parser does not take for an option.
std::string fileWord(const std::string& path) { return path.front() == '-' ? "./" + path : path; }

// A recording run and a strict run differ only in what they write: in both, the host says that it records.
void addContractWords(Words& words, const ContractOptions& contract, bool records) {
    addSwitch(words, "strict", records ? true : contract.strict);
    addSwitch(words, "warnings-as-errors", contract.warningsAsErrors);
    for (const std::string& rule : contract.suppressed) add(words, "--suppress", rule);
    if (contract.timeout) add(words, "--timeout", numberOf(*contract.timeout));
    if (contract.host) add(words, "--host", *contract.host);
    if (contract.ignoresProjectFile) words.emplace_back("--no-project-file");
}

}  // namespace

std::vector<std::string> debugOptionsOf(const SessionOptions& options, bool records, bool keepsGoing) {
    if (options.style && isStandardInput(*options.style)) return {};
    Words words;
    for (const std::string& file : options.addOns) add(words, "--addon", file);
    if (options.style) add(words, "--style", *options.style);
    addContractWords(words, options.contract, records);
    if (options.batch) words.emplace_back("--batch-mode");
    if (keepsGoing) words.emplace_back("--keep-going");
    return words;
}

std::vector<std::string> debugWords(const std::string& macroFile, const std::vector<std::string>& options) {
    Words words = {fileWord(macroFile)};
    words.insert(words.end(), options.begin(), options.end());
    return words;
}

std::vector<std::string> optionsOf(const StopPlace& place) {
    switch (place.event) {
        case StopEvent_e::Problem: break;
        case StopEvent_e::Rule: return {"--rule", place.rule};
        case StopEvent_e::Call: return {"--call", std::to_string(place.number)};
        case StopEvent_e::Command: return {"--command", std::to_string(place.number)};
        case StopEvent_e::Failure: return {"--failure"};
        case StopEvent_e::Hang: return {"--hang"};
        case StopEvent_e::Crash: return {"--crash"};
    }
    return {};
}

std::string debugCall(const std::string& macroFile, const std::vector<std::string>& options, const StopPlace& place) {
    if (options.empty() || isStandardInput(macroFile)) return "";
    std::string line = kProgramName + std::string(" debug");
    for (const std::string& word : debugWords(macroFile, options)) line += ' ' + shellWord(word);
    for (const std::string& word : optionsOf(place)) line += ' ' + shellWord(word);
    return line;
}

std::string debugLine(const std::string& call) { return call.empty() ? "" : "    debug: " + call + '\n'; }

std::string DebugCalls::of(const standin::Finding& finding) { return at(placeOf(finding)); }

// The first finding about a rule is found by its rule, which stays right when the add-on changes.
StopPlace DebugCalls::placeOf(const standin::Finding& finding) {
    if (finding.rule == kHangRule) return {StopEvent_e::Hang};
    const std::size_t call = finding.seen.call != 0 || !finding.opened ? finding.seen.call : finding.opened->call;
    const std::size_t first = m_firstCalls.try_emplace(finding.rule, call).first->second;
    if (call == first || call == 0) return {StopEvent_e::Rule, finding.rule};
    return {StopEvent_e::Call, "", call};
}

}  // namespace vexa::runner
