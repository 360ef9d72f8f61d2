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
void addContractWords(Words& words, const RunOptions& options) {
    const ContractOptions& contract = options.contract;
    addSwitch(words, "strict", options.record ? true : contract.strict);
    addSwitch(words, "warnings-as-errors", contract.warningsAsErrors);
    for (const std::string& rule : contract.suppressed) add(words, "--suppress", rule);
    if (contract.timeout) add(words, "--timeout", numberOf(*contract.timeout));
    if (contract.host) add(words, "--host", *contract.host);
    if (contract.ignoresProjectFile) words.emplace_back("--no-project-file");
}

}  // namespace

std::vector<std::string> debugWordsOf(const RunOptions& options) {
    if (isStandardInput(options.macroFile) || (options.style && isStandardInput(*options.style))) return {};
    Words words = {fileWord(options.macroFile)};
    for (const std::string& file : options.addOns) add(words, "--addon", file);
    if (options.style) add(words, "--style", *options.style);
    addContractWords(words, options);
    if (options.batch) words.emplace_back("--batch-mode");
    if (options.keepGoing) words.emplace_back("--keep-going");
    return words;
}

std::vector<std::string> wordsOf(const StopPlace& place) {
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

std::string debugCall(const std::vector<std::string>& words, const StopPlace& place) {
    std::string line = kProgramName + std::string(" debug");
    for (const std::string& word : words) line += ' ' + shellWord(word);
    for (const std::string& word : wordsOf(place)) line += ' ' + shellWord(word);
    return line;
}

}  // namespace vexa::runner
