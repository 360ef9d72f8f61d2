#include "language/CommandCases.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string_view>
#include <utility>

#include "language/MacroLine.h"
#include "language/ValueText.h"

namespace vexa::runner {
namespace {

constexpr const char* kUnknownName = "VEXACHECK";
constexpr long double kBeyondInt32 = 4294967296.0L;  // 2 to the power of 32

// A command as its options and their values.
struct WrittenCommand {
    struct Part {
        const OptionDescription* option;
        std::string value;
    };
    const CommandDescription* command;
    std::vector<Part> parts = {};

    bool has(const OptionDescription& option) const {
        return std::any_of(parts.begin(), parts.end(), [&](const Part& part) { return part.option == &option; });
    }

    // Returns the command with this value of `option`, which replaces an earlier one.
    std::string with(const OptionDescription& option, const std::string& value) const {
        WrittenCommand changed = *this;
        for (Part& part : changed.parts) {
            if (part.option != &option) continue;
            part.value = value;
            return changed.text();
        }
        changed.parts.push_back({&option, value});
        return changed.text();
    }

    std::string without(const OptionDescription& option) const {
        WrittenCommand changed = *this;
        auto& kept = changed.parts;
        kept.erase(std::remove_if(kept.begin(), kept.end(), [&](const Part& part) { return part.option == &option; }),
                   kept.end());
        return changed.text();
    }

    std::string text() const {
        std::string all = command->name;
        for (const Part& part : parts) all += ' ' + assignment(part.option->name, part.value, command->kind);
        return all;
    }
};

std::string integerText(long double value) {
    return value < 0 ? std::to_string(static_cast<std::int64_t>(value))
                     : std::to_string(static_cast<std::uint64_t>(value));
}

std::string numberText(long double value) {
    std::string text = std::to_string(static_cast<double>(value));
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text += '0';
    return text;
}

class CaseWriter {
public:
    CaseWriter(const AddOnDescription& addOn, const CommandDescription& command) : m_command(command) {
        const Descriptions descriptions(addOn);
        for (const std::string& example : command.examples) readExample(example, addOn, descriptions);
    }

    WrittenCommand least() const {
        WrittenCommand command{&m_command};
        for (const OptionDescription& option : m_command.options) {
            if (option.isRequired) command.parts.push_back({&option, sampleOf(option)});
        }
        return command;
    }

    std::vector<CommandCase> accepted() {
        m_cases.push_back({"with only its required options", {least().text()}});
        for (const OptionDescription& option : m_command.options) addAccepted(option);
        return std::move(m_cases);
    }

    std::vector<CommandCase> refused() {
        for (const OptionDescription& option : m_command.options) {
            if (!option.isRequired) continue;
            m_cases.push_back(
                {"without the required option " + option.name, {surroundings(option).front().without(option)}});
        }
        const std::string unknown = ' ' + assignment(kUnknownName, "1", m_command.kind);
        m_cases.push_back({"with an option that is not described", {least().text() + unknown}});
        for (const OptionDescription& option : m_command.options) addRefused(option);
        return std::move(m_cases);
    }

    std::vector<LargeInteger> largeIntegers() const {
        std::vector<LargeInteger> all;
        for (const OptionDescription& option : m_command.options) {
            if (option.type != OptionType_e::Int64) continue;
            const std::string value = integerText(std::strtold(sampleOf(option).c_str(), nullptr) + kBeyondInt32);
            all.push_back({option.name, value, surroundings(option).front().with(option, value)});
        }
        return all;
    }

private:
    // An example is read with its own copy of the description, so its options are found by their names.
    void readExample(const std::string& example, const AddOnDescription& addOn, const Descriptions& descriptions) {
        const std::string line = addOn.addOn + ' ' + example;
        const MacroLine parts = parseLine(line, descriptions);
        if (parts.command == nullptr || parts.command->name != m_command.name) return;
        WrittenCommand command{&m_command};
        for (const WrittenOption& written : parts.options) {
            const OptionDescription* const option = findOption(m_command, textOf(written.name, line));
            if (option != nullptr) command.parts.push_back({option, std::string(textOf(written.value, line))});
        }
        m_examples.push_back(std::move(command));
    }

    // The examples with the option, and then the least command.
    std::vector<WrittenCommand> surroundings(const OptionDescription& option) const {
        std::vector<WrittenCommand> all;
        std::copy_if(m_examples.begin(), m_examples.end(), std::back_inserter(all),
                     [&](const WrittenCommand& example) { return example.has(option); });
        all.push_back(least());
        return all;
    }

    // A value that the add-on should accept.
    std::string sampleOf(const OptionDescription& option) const {
        for (const WrittenCommand& example : m_examples) {
            for (const WrittenCommand::Part& part : example.parts) {
                if (part.option == &option) return part.value;
            }
        }
        if (option.defaultValue) return written(option, *option.defaultValue);
        if (option.type == OptionType_e::Set) return '[' + (option.min ? option.min->text : "1") + ']';
        if (option.type == OptionType_e::Boolean) return "TRUE";
        if (option.type == OptionType_e::Choice) return written(option, option.values.front());
        if (option.type == OptionType_e::String) return written(option, "text");
        return option.min ? option.min->text : option.max ? option.max->text : "1";
    }

    std::string written(const OptionDescription& option, const std::string& value) const {
        return writtenValue(value, option, m_command.kind);
    }

    // ---- Accepted

    void accept(const OptionDescription& option, const std::string& how, const std::string& value) {
        CommandCase added{option.name + ' ' + how, {}};
        for (const WrittenCommand& surrounding : surroundings(option)) {
            added.texts.push_back(surrounding.with(option, value));
        }
        m_cases.push_back(std::move(added));
    }

    void addAccepted(const OptionDescription& option) {
        const std::string sample = sampleOf(option);
        accept(option, "with a value of its type", sample);
        if (option.defaultValue) accept(option, "at its default", written(option, *option.defaultValue));
        if (option.type == OptionType_e::Boolean) {
            accept(option, "that is true", "TRUE");
            accept(option, "that is false", "FALSE");
        }
        for (const std::string& value : option.values) accept(option, "with " + value, written(option, value));
        if (isNumber(option.type)) addAcceptedNumbers(option, sample);
        if (option.isRepeatable) repeat(option, sample);
    }

    void addAcceptedNumbers(const OptionDescription& option, const std::string& sample) {
        if (option.min) accept(option, "at its minimum", option.min->text);
        if (option.max) accept(option, "at its maximum", option.max->text);
        const long double value = std::strtold(sample.c_str(), nullptr);
        if (option.type == OptionType_e::Int32) {
            accept(option, "with a value of which an Int32 uses the low 32 bits", integerText(value + kBeyondInt32));
        }
        if (option.type != OptionType_e::Double) return;
        for (const long double fraction : {std::floor(value) + 0.5L, std::floor(value) - 0.5L}) {
            if (!isWithin(fraction, option)) continue;
            return accept(option, "with a fraction", numberText(fraction));
        }
    }

    static bool isWithin(long double value, const OptionDescription& option) {
        return (!option.min || value >= option.min->value) && (!option.max || value <= option.max->value);
    }

    void repeat(const OptionDescription& option, const std::string& sample) {
        CommandCase added{option.name + " given twice", {}};
        const std::string again = ' ' + assignment(option.name, sample, m_command.kind);
        for (const WrittenCommand& surrounding : surroundings(option)) {
            added.texts.push_back(surrounding.with(option, sample) + again);
        }
        m_cases.push_back(std::move(added));
    }

    // ---- Refused

    void refuse(const OptionDescription& option, const std::string& how, const std::string& value) {
        m_cases.push_back({option.name + ' ' + how, {surroundings(option).front().with(option, value)}});
    }

    void addRefused(const OptionDescription& option) {
        const std::string noSuch = std::string("with a value that is no ") + nameOf(option.type);
        for (const char* const value : valuesOfOtherTypes(option.type)) refuse(option, noSuch, value);
        if (option.type == OptionType_e::Choice) {
            refuse(option, "with a value that is not in the list", written(option, kUnknownName));
        }
        if (!option.mayBeEmpty) {
            refuse(option, "that is empty", option.type == OptionType_e::Set ? "[ ]" : written(option, ""));
        }
        if (isNumber(option.type)) addOutsideOfLimits(option, "", "");
        if (option.type == OptionType_e::Set) addOutsideOfLimits(option, "[", "]");
    }

    // Strings never have their closing quote missing, because the command processor would wait for it forever.
    static std::vector<const char*> valuesOfOtherTypes(OptionType_e type) {
        switch (type) {
            case OptionType_e::Boolean: return {"MAYBE", "2", "'TRUE'"};
            case OptionType_e::UInt64: return {"x", "1.5", "-1", "18446744073709551616", "'1'"};
            case OptionType_e::Int32: return {"x", "1.5", "'1'"};
            case OptionType_e::Int64: return {"x", "1.5", "9223372036854775808", "'1'"};
            case OptionType_e::Double: return {"x", "1.5.5", "'1'"};
            case OptionType_e::Set: return {"1", "[x]", "[1", "'[1]'"};
            case OptionType_e::String:
            case OptionType_e::Choice: break;
        }
        return {"x", "1"};
    }

    void addOutsideOfLimits(const OptionDescription& option, const std::string& open, const std::string& close) {
        const bool isDouble = option.type == OptionType_e::Double;
        const OptionType_e type = option.type == OptionType_e::Set ? OptionType_e::Int64 : option.type;
        const long double least = option.type == OptionType_e::Set ? 0 : leastOf(type).value;
        const auto text = [&](long double value) {
            return open + (isDouble ? numberText(value) : integerText(value)) + close;
        };
        const auto stepFrom = [&](long double end) { return isDouble ? std::max(1.0L, std::fabs(end)) : 1.0L; };
        if (option.min && (isDouble || option.min->value - 1 >= least)) {
            refuse(option, "below its minimum", text(option.min->value - stepFrom(option.min->value)));
        }
        if (!option.max) return;
        // An Int32 would use the low 32 bits, which are within the limits.
        const bool isInt64 = option.type == OptionType_e::Int64;
        for (const long double more : {stepFrom(option.max->value), kBeyondInt32}) {
            if (!isDouble && option.max->value + more > greatestOf(type).value) continue;
            refuse(option, "above its maximum", text(option.max->value + more));
            if (!isInt64) break;
        }
    }

    const CommandDescription& m_command;
    std::vector<WrittenCommand> m_examples;
    std::vector<CommandCase> m_cases;
};

}  // namespace

std::vector<CommandCase> acceptedCases(const AddOnDescription& addOn, const CommandDescription& command) {
    return CaseWriter(addOn, command).accepted();
}

std::vector<CommandCase> refusedCases(const AddOnDescription& addOn, const CommandDescription& command) {
    return CaseWriter(addOn, command).refused();
}

std::vector<LargeInteger> largeIntegers(const AddOnDescription& addOn, const CommandDescription& command) {
    return CaseWriter(addOn, command).largeIntegers();
}

std::string leastCommand(const AddOnDescription& addOn, const CommandDescription& command) {
    return CaseWriter(addOn, command).least().text();
}

}  // namespace vexa::runner
