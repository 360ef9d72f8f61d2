// Reads descriptions of commands. Each problem must have a place in the file. An accepted description that is written
// again must be read back unchanged. Lint must accept the commands that the description allows, and refuse the others.

#include <algorithm>
#include <nlohmann/json.hpp>

#include "Fuzz.h"
#include "SteppedRanges.h"
#include "formats/DescriptionFile.h"
#include "language/CommandCases.h"
#include "language/LineCheck.h"

namespace vexa::fuzz {
namespace {

using Json = nlohmann::ordered_json;
using runner::AddOnDescription;
using runner::CommandDescription;
using runner::OptionDescription;
using runner::OptionType_e;

constexpr const char* kName = "f";
constexpr std::size_t kMostProblems = 20;

// JSON may write a digit or a colon as \u003...
bool mayTakeLong(const std::string& text) {
    return mayHaveManyMembers(text) || text.find("\\u003") != std::string::npos;
}

// ---- Problems

// A problem of a value ends with its line and column; a text that is not JSON has them after the name of the file.
bool hasPlace(const std::string& problem, std::size_t lines) {
    const bool isOfValue = problem.compare(0, 3, "f: ") == 0;
    const std::size_t at = isOfValue ? problem.rfind('(') + 1 : 2;
    std::size_t line = 0;
    std::size_t column = 0;
    return std::sscanf(problem.c_str() + at, "%zu:%zu", &line, &column) == 2 && line >= 1 && line <= lines &&
           column >= 1;
}

void requireProblems(const std::vector<std::string>& problems, const std::string& text) {
    const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
    require(problems.size() <= kMostProblems, "the problems are few");
    for (const std::string& problem : problems) {
        require(problem.find_first_of("\r\n") == std::string::npos, "a problem is one line", problem);
        require(hasPlace(problem, lines), "a problem has a place in the file", problem);
    }
}

// ---- The description, written again

Json writtenDefault(const OptionDescription& option) {
    if (option.type == OptionType_e::Boolean) return *option.defaultValue == "TRUE";
    if (option.type == OptionType_e::Double) return Json::parse(*option.defaultValue);
    return *option.defaultValue;
}

// An integer may be a text, because JSON tools cannot write all integers of 64 bits.
Json writtenLimit(const OptionDescription& option, const std::string& number) {
    if (option.type == OptionType_e::Double) return Json::parse(number);
    return number;
}

Json written(const OptionDescription& option) {
    Json json = {{"name", option.name}, {"type", nameOf(option.type)}, {"help", option.help}};
    if (option.defaultValue) json["default"] = writtenDefault(option);
    if (!option.without.empty()) json["without"] = option.without;
    if (option.min) json["min"] = writtenLimit(option, option.min->text);
    if (option.max) json["max"] = writtenLimit(option, option.max->text);
    if (!option.values.empty()) json["values"] = option.values;
    if (option.isRequired) json["required"] = true;
    if (option.isRepeatable) json["repeatable"] = true;
    if (!option.mayBeEmpty) json["mayBeEmpty"] = false;
    return json;
}

Json written(const CommandDescription& command) {
    Json json = {{"name", command.name}, {"kind", nameOf(command.kind)}, {"purpose", command.purpose}};
    json["options"] = Json::array();
    for (const OptionDescription& option : command.options) {
        Json one = written(option);
        const bool isEscaped = runner::isQuoted(option.type) && command.kind == runner::CommandKind_e::Processor;
        if (isEscaped && !option.hasEscapes) one["escapes"] = false;
        json["options"].push_back(one);
    }
    json["before"] = command.before;
    json["examples"] = command.examples;
    return json;
}

std::string written(const AddOnDescription& addOn) {
    Json json = {{"addon", addOn.addOn}, {"commands", Json::array()}};
    for (const CommandDescription& command : addOn.commands) json["commands"].push_back(written(command));
    return json.dump();
}

void requireReadBack(const AddOnDescription& addOn) {
    const std::string text = written(addOn);
    const runner::ReadDescription again = runner::parseDescription(text, kName);
    require(again.problems.empty(), "a description that was written is read", text);
    require(written(again.description) == text, "a description is read back unchanged", text);
}

// ---- The commands

bool isLinted(const std::string& command, const AddOnDescription& addOn) {
    const auto found = runner::checkCommand(command, addOn);
    return std::none_of(found.begin(), found.end(),
                        [](const runner::Diagnostic& one) { return one.severity == standin::Severity_e::Error; });
}

// The add-on reads such an integer, and lint warns that it becomes another one.
bool isCut(const runner::CommandCase& one) { return one.what.find("low 32 bits") != std::string::npos; }

void requireCases(const CommandDescription& command, const AddOnDescription& addOn) {
    for (const runner::CommandCase& one : runner::acceptedCases(addOn, command)) {
        const bool isAccepted = std::any_of(one.texts.begin(), one.texts.end(),
                                            [&](const std::string& text) { return isLinted(text, addOn); });
        require(isAccepted || isCut(one), "lint accepts what the description allows",
                one.what + ": " + one.texts.front());
    }
    for (const runner::CommandCase& one : runner::refusedCases(addOn, command)) {
        require(!isLinted(one.texts.front(), addOn), "lint refuses what the description forbids",
                one.what + ": " + one.texts.front());
    }
}

// Examples may be wrong themselves.
void tryCommands(AddOnDescription addOn) {
    for (CommandDescription& command : addOn.commands) command.examples.clear();
    for (const CommandDescription& command : addOn.commands) requireCases(command, addOn);
}

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    const std::string text = textOf(data, size);
    if (mayTakeLong(text)) return 0;
    const vexa::runner::ReadDescription read = vexa::runner::parseDescription(text, kName);
    requireProblems(read.problems, text);
    if (!read.problems.empty()) return 0;
    requireReadBack(read.description);
    tryCommands(read.description);
    return 0;
}
