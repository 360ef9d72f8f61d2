#include "language/WrittenCommand.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "language/MacroLine.h"
#include "language/ValueText.h"

namespace vexa::runner {
namespace {

// An example is read with its own copy of the description, so its options are found by their names.
WrittenCommand exampleOf(const std::string& line, const MacroLine& parts, const CommandDescription& command) {
    WrittenCommand example{&command};
    for (const WrittenOption& written : parts.options) {
        const OptionDescription* const option = findOption(command, textOf(written.name, line));
        if (option != nullptr) example.parts.push_back({option, std::string(textOf(written.value, line))});
    }
    return example;
}

}  // namespace

bool WrittenCommand::has(const OptionDescription& option) const {
    return std::any_of(parts.begin(), parts.end(), [&](const Part& part) { return part.option == &option; });
}

void WrittenCommand::set(const OptionDescription& option, const std::string& value) {
    for (Part& part : parts) {
        if (part.option != &option) continue;
        part.value = value;
        return;
    }
    parts.push_back({&option, value});
}

void WrittenCommand::remove(const OptionDescription& option) {
    parts.erase(std::remove_if(parts.begin(), parts.end(), [&](const Part& part) { return part.option == &option; }),
                parts.end());
}

std::string WrittenCommand::text() const {
    std::string all = command->name;
    for (const Part& part : parts) all += ' ' + assignment(part.option->name, part.value, command->kind);
    return all;
}

CommandSamples::CommandSamples(const AddOnDescription& addOn, const CommandDescription& command) : m_command(command) {
    const Descriptions descriptions(addOn);
    for (const std::string& example : command.examples) {
        const std::string line = addOn.addOn + ' ' + example;
        const MacroLine parts = parseLine(line, descriptions);
        if (parts.command == nullptr || parts.command->name != command.name) continue;
        m_examples.push_back(exampleOf(line, parts, command));
    }
}

WrittenCommand CommandSamples::least() const {
    WrittenCommand command{&m_command};
    for (const OptionDescription& option : m_command.options) {
        if (option.isRequired) command.parts.push_back({&option, sampleOf(option)});
    }
    return command;
}

std::vector<WrittenCommand> CommandSamples::surroundings(const OptionDescription& option) const {
    std::vector<WrittenCommand> all;
    std::copy_if(m_examples.begin(), m_examples.end(), std::back_inserter(all),
                 [&](const WrittenCommand& example) { return example.has(option); });
    all.push_back(least());
    return all;
}

std::string CommandSamples::sampleOf(const OptionDescription& option) const {
    const auto written = [&](const std::string& value) { return writtenValue(value, option, m_command.kind); };
    for (const WrittenCommand& example : m_examples) {
        for (const WrittenCommand::Part& part : example.parts) {
            if (part.option == &option) return part.value;
        }
    }
    if (option.defaultValue) return written(*option.defaultValue);
    if (option.type == OptionType_e::Set) return '[' + (option.min ? option.min->text : "1") + ']';
    if (option.type == OptionType_e::Boolean) return "TRUE";
    if (option.type == OptionType_e::Choice) return written(option.values.front());
    if (option.type == OptionType_e::String) return written("text");
    return option.min ? option.min->text : option.max ? option.max->text : "1";
}

}  // namespace vexa::runner
