#include "commands/describe/TriedDescription.h"

#include <algorithm>
#include <cstdlib>

#include "language/Descriptions.h"
#include "language/MacroLine.h"
#include "language/ValueCases.h"
#include "language/WrittenCommand.h"
#include "text/Joined.h"

namespace vexa::runner {
namespace {

constexpr const char* kPurpose = "TODO: say what the command does.";

// Improves one command.
class CommandTrial {
public:
    CommandTrial(const AddOnDescription& addOn, CommandDescription& command, const TryCommands& tryCommands)
        : m_addOn(addOn), m_command(command), m_try(tryCommands) {}

    void improve(const std::vector<std::string>& commands) {
        findCommandsBefore(commands);
        m_command.purpose = m_command.examples.empty()
                                ? "TODO: say what the command does. The add-on refused it in the macros."
                                : kPurpose;
        for (OptionDescription& option : m_command.options) option.isRequired = isNeededInExample(option);
        for (OptionDescription& option : m_command.options) option.isRequired = option.isRequired && isNeeded(option);
        for (OptionDescription& option : m_command.options) describe(option);
    }

private:
    // Keeps the examples that succeed alone. If there are none, the commands before the first example have to run.
    void findCommandsBefore(const std::vector<std::string>& commands) {
        const std::vector<std::string> examples = m_command.examples;
        keepAccepted(examples);
        if (!m_command.examples.empty()) return;
        for (const std::string& text : commands) {
            if (text == examples.front()) break;
            m_command.before.push_back(text);
            if (!accepts(m_command.before)) m_command.before.pop_back();
        }
        keepAccepted(examples);
        if (m_command.examples.empty()) m_command.before.clear();
        dropNeedless();
    }

    void keepAccepted(const std::vector<std::string>& examples) {
        m_command.examples.clear();
        for (const std::string& example : examples) {
            const bool isKnown = std::count(m_command.examples.begin(), m_command.examples.end(), example) != 0;
            if (!isKnown && run(example).isAccepted) m_command.examples.push_back(example);
        }
    }

    // The commands before that all examples can do without.
    void dropNeedless() {
        auto& before = m_command.before;
        for (std::size_t at = before.size(); at-- != 0;) {
            const std::vector<std::string> all = before;
            before.erase(before.begin() + static_cast<std::ptrdiff_t>(at));
            const auto& examples = m_command.examples;
            const bool isNeedless = std::all_of(examples.begin(), examples.end(),
                                                [&](const std::string& example) { return run(example).isAccepted; });
            if (!isNeedless) before = all;
        }
    }

    bool accepts(const std::vector<std::string>& steps) const { return m_try(steps).isAccepted; }

    TriedCommand run(const std::string& text) const {
        std::vector<std::string> steps = m_command.before;
        steps.push_back(text);
        return m_try(steps);
    }

    // ---- Options

    void describe(OptionDescription& option) {
        m_notes = {std::string("guessed: ") + nameOf(option.type)};
        const CommandSamples samples(m_addOn, m_command);
        const std::vector<WrittenCommand> surroundings = samples.surroundings(option);
        if (!surroundings.front().has(option)) {
            option.help = "TODO. Not tried: the add-on refused each command with this option.";
            return;
        }
        m_example = surroundings.front();
        if (option.isRequired) m_notes.emplace_back("refused without it");
        if (isInteger(option.type)) findNumbers(option, samples.sampleOf(option));
        if (option.type == OptionType_e::String || option.type == OptionType_e::Set) findEmpty(option);
        option.help = "TODO. " + joined(m_notes, "; ");
    }

    bool acceptsValue(const OptionDescription& option, const std::string& value) const {
        WrittenCommand command = m_example;
        command.set(option, value);
        return run(command.text()).isAccepted;
    }

    bool isNeededInExample(const OptionDescription& option) const {
        WrittenCommand without = CommandSamples(m_addOn, m_command).surroundings(option).front();
        if (!without.has(option)) return false;
        without.remove(option);
        return !run(without.text()).isAccepted;
    }

    // Another option of the example may need this one.
    bool isNeeded(const OptionDescription& option) const {
        WrittenCommand least = CommandSamples(m_addOn, m_command).least();
        least.remove(option);
        return !run(least.text()).isAccepted;
    }

    void findNumbers(OptionDescription& option, const std::string& sample) {
        const bool isProcessor = m_command.kind == CommandKind_e::Processor;
        if (isProcessor && acceptsValue(option, "1.5")) {
            option.type = OptionType_e::Double;
            m_notes.front() = "guessed: Double, because 1.5 is accepted";
        } else if (isProcessor && isCutTo32Bits(option, sample)) {
            option.type = OptionType_e::Int32;
            m_notes.front() = "guessed: Int32, because the high bits of a large number are not recorded";
        }
        if (acceptsValue(option, "0")) {
            if (isProcessor && !acceptsValue(option, "-1")) setLeast(option, "0", "-1 is refused");
        } else if (acceptsValue(option, "1")) {
            setLeast(option, "1", "0 is refused");
        }
    }

    void setLeast(OptionDescription& option, const std::string& least, const std::string& why) {
        option.min = DescribedNumber{std::strtold(least.c_str(), nullptr), least};
        m_notes.push_back(why);
    }

    bool isCutTo32Bits(const OptionDescription& option, const std::string& sample) const {
        WrittenCommand command = m_example;
        const std::string large = integerText(std::strtold(sample.c_str(), nullptr) + kBeyondInt32);
        command.set(option, large);
        const TriedCommand tried = run(command.text());
        const Descriptions descriptions(m_addOn);
        for (const std::string& line : tried.recorded) {
            for (const WrittenOption& written : parseLine(line, descriptions).options) {
                if (written.description == nullptr || written.description->name != option.name) continue;
                if (textOf(written.value, line) != large) return true;
            }
        }
        return false;
    }

    void findEmpty(OptionDescription& option) {
        const bool isSet = option.type == OptionType_e::Set;
        option.mayBeEmpty = acceptsValue(option, isSet ? "[ ]" : "''");
        if (!option.mayBeEmpty) m_notes.emplace_back("refused if empty");
        if (!isSet && !acceptsValue(option, '\'' + std::string(kUnknownName) + '\'')) {
            m_notes.emplace_back("another text is refused, so it may be a Choice or name a file");
        }
    }

    const AddOnDescription& m_addOn;
    CommandDescription& m_command;
    const TryCommands& m_try;
    WrittenCommand m_example{&m_command};
    std::vector<std::string> m_notes;
};

}  // namespace

void improve(AddOnDescription& description, const std::vector<std::string>& commands, const TryCommands& tryCommands) {
    for (CommandDescription& command : description.commands) {
        CommandTrial(description, command, tryCommands).improve(commands);
    }
}

}  // namespace vexa::runner
