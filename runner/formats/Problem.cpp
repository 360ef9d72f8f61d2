#include "formats/Problem.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <map>
#include <utility>

#include "system/files/PathFromHere.h"
#include "terminal/Console.h"
#include "text/Printable.h"
#include "text/WholeNumber.h"

namespace vexa::runner {
namespace {

constexpr standin::Severity_e kError = standin::Severity_e::Error;
constexpr char kFieldEnd = '\0';  // printable texts and paths do not contain it
constexpr std::size_t kFields = 12;

constexpr standin::Rule kRules[] = {
    {kCommandFailed, "Runs", kError, "A command of the macro must succeed.",
     "The commands after it do not run, or they work on wrong data.",
     "Read the message of the add-on, and correct the command in the macro or the add-on."},
    {kMacroRefused, "Runs", kError, "Every line of a macro file must be a command of a loaded add-on.",
     "The macro does not run at all.", "Correct the line, or load the add-on of the command with --addon."},
    {kProcessEnded, "Runs", kError, "An add-on must not end the process of its host.",
     "The user loses all work that was not saved.",
     "Run the macro again with --in-process in a debugger, and look at the stack of the crash."},
    {kMacroFailed, "Runs", kError, "A macro must give its expected results.",
     "The add-on does something else than before, and users of its macros notice.",
     "Correct the add-on. If the new results are right, save them with 'vexa-standin test --accept'."},
};

std::size_t numberOf(std::string_view digits) { return wholeNumberIn(digits).value_or(0); }

ProblemPlace placeWith(const std::string& text, const standin::Place& place) {
    ProblemPlace result = placeOf(place.macroLine);
    result.text = printable(text);
    return result;
}

std::string whatHappened(const standin::Place& place) {
    if (place.call == 0) return "the start of \"" + place.command + '"';
    return "call " + std::to_string(place.call) + ", " + place.function;
}

// The line that the author has to look at. The end of a command shows only where the add-on's function starts.
const standin::SourcePlace& sourceToOpen(const standin::Finding& finding) {
    const bool isEnd = finding.seen.call == 0 && finding.opened && finding.opened->source.line != 0;
    return isEnd ? finding.opened->source : finding.seen.source;
}

// Makes the line of the source the place to open, and the place until now the other one.
void openAt(Problem& problem, const standin::SourcePlace& source) {
    if (source.line == 0) return;
    if (problem.place.line != 0) problem.other = problem.place;
    problem.place = {source.file, source.line, ""};
}

// The lines after the first one, which has the place and the message.
std::string detailsOf(const standin::Finding& finding) {
    const std::string text = printable(textOf(finding));
    const std::string head = "[" + finding.rule + "]\n";
    const std::size_t headEnd = text.find(head);
    return headEnd == std::string::npos ? "" : text.substr(headEnd + head.size());
}

std::uint64_t hashOf(std::string_view text) {  // FNV-1a
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    return hash;
}

std::string hex(std::uint64_t number) {
    std::array<char, 17> text{};
    std::snprintf(text.data(), text.size(), "%016llx", static_cast<unsigned long long>(number));
    return text.data();
}

std::vector<std::string> fieldsOf(std::string_view text) {
    std::vector<std::string> fields;
    while (!text.empty()) {
        const std::size_t size = std::min(text.find(kFieldEnd), text.size() - 1);
        fields.emplace_back(text.substr(0, size));
        text.remove_prefix(size + 1);
    }
    fields.resize(kFields);
    return fields;
}

}  // namespace

const standin::Rule* findRule(const ProblemReport& report, std::string_view name) {
    if (const standin::Rule* const rule = standin::findRule(name)) return rule;
    const auto isCalled = [&](const standin::Rule& rule) { return rule.name == name; };
    const auto own = std::find_if(std::begin(kRules), std::end(kRules), isCalled);
    if (own != std::end(kRules)) return &*own;
    const auto further = std::find_if(report.rules.begin(), report.rules.end(), isCalled);
    return further == report.rules.end() ? nullptr : &*further;
}

ProblemPlace placeOf(const std::string& fileAndLine) {
    const std::size_t colon = fileAndLine.rfind(':');
    const std::size_t line = colon == std::string::npos ? 0 : numberOf(std::string_view(fileAndLine).substr(colon + 1));
    return line == 0 ? ProblemPlace{fileAndLine, 0, ""} : ProblemPlace{fileAndLine.substr(0, colon), line, ""};
}

Problem problemOf(const standin::Finding& finding, const std::string& file) {
    Problem problem;
    problem.rule = finding.rule;
    problem.severity = finding.severity;
    problem.message = printable(finding.message);
    problem.details = detailsOf(finding);
    problem.place = placeWith(finding.seen.command, finding.seen);
    if (problem.place.file.empty()) problem.place.file = file;
    const bool hasOther = finding.opened && !finding.opened->macroLine.empty();
    if (hasOther) problem.other = placeWith(whatHappened(*finding.opened), *finding.opened);
    openAt(problem, sourceToOpen(finding));
    return problem;
}

Problem problemOf(const MacroCommand& command, const char* rule, const std::string& message,
                  const standin::SourcePlace& source) {
    Problem problem;
    problem.rule = rule;
    problem.message = printable(message);
    problem.place = placeOf(command.place);
    problem.place.text = printable(command.addOnId.empty() ? command.text : command.addOnId + ' ' + command.text);
    openAt(problem, source);
    return problem;
}

Problem problemOf(const std::string& file, const std::string& message) {
    const std::size_t fileEnd = std::min(file.size() + 1, message.size());
    const std::size_t lineEnd = std::min(message.find(": ", fileEnd), message.size());
    Problem problem;
    problem.rule = kMacroRefused;
    problem.place = {file, numberOf(std::string_view(message).substr(fileEnd, lineEnd - fileEnd)), ""};
    const std::size_t whyBegin = problem.place.line == 0 ? fileEnd + 1 : lineEnd + 2;
    problem.message = printable(message.substr(std::min(whyBegin, message.size())));
    return problem;
}

void addStacks(Problem& problem, StackReport stacks) {
    stacks.isWhole = true;
    problem.details += printable(textOf(stacks));
    const Frame* const own = stacks.ownFrame();
    if (own == nullptr || own->line == 0) return;
    problem.other = std::exchange(problem.place, {own->file, own->line, printable(own->function)});
}

std::string wholeText(const Problem& problem) {
    return problem.details.empty() ? problem.message
                                   : problem.message + '\n' + std::string(withoutTrailingBlanks(problem.details));
}

std::vector<std::string> fingerprintsOf(const std::vector<Problem>& problems) {
    std::vector<std::string> fingerprints;
    std::map<std::string, std::size_t> counts;
    for (const Problem& problem : problems) {
        const ProblemPlace& place = problem.place;
        const std::string hash =
            hex(hashOf(problem.rule + '\n' + pathFromHere(place.file) + '\n' + place.text + '\n' + problem.message));
        fingerprints.push_back(hash + ':' + std::to_string(++counts[hash]));
    }
    return fingerprints;
}

std::string packed(const Problem& problem) {
    const ProblemPlace& place = problem.place;
    const ProblemPlace other = problem.other.value_or(ProblemPlace{});
    const std::array<std::string, kFields> fields = {problem.rule,    problem.severity == kError ? "e" : "w",
                                                     problem.message, problem.details,
                                                     place.file,      std::to_string(place.line),
                                                     place.text,      problem.other ? "o" : "",
                                                     other.file,      std::to_string(other.line),
                                                     other.text,      problem.debug};
    std::string text;
    for (const std::string& field : fields) text += field + kFieldEnd;
    return text;
}

Problem unpackedProblem(std::string_view text) {
    const std::vector<std::string> fields = fieldsOf(text);
    Problem problem{fields[0],
                    fields[1] == "e" ? kError : standin::Severity_e::Warning,
                    fields[2],
                    fields[3],
                    {fields[4], numberOf(fields[5]), fields[6]},
                    std::nullopt,
                    ""};
    if (!fields[7].empty()) problem.other = ProblemPlace{fields[8], numberOf(fields[9]), fields[10]};
    problem.debug = fields[11];
    return problem;
}

}  // namespace vexa::runner
