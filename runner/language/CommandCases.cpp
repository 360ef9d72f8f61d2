#include "language/CommandCases.h"

#include <cstdlib>
#include <utility>

#include "language/ValueCases.h"
#include "language/ValueText.h"
#include "language/WrittenCommand.h"

namespace vexa::runner {
namespace {

std::string textWith(WrittenCommand command, const OptionDescription& option, const std::string& value) {
    command.set(option, value);
    return command.text();
}

std::string textWithout(WrittenCommand command, const OptionDescription& option) {
    command.remove(option);
    return command.text();
}

class CaseWriter {
public:
    CaseWriter(const AddOnDescription& addOn, const CommandDescription& command)
        : m_command(command), m_samples(addOn, command) {}

    std::vector<CommandCase> accepted() {
        m_cases.push_back({"with only its required options", {m_samples.least().text()}});
        for (const OptionDescription& option : m_command.options) {
            const std::string sample = m_samples.sampleOf(option);
            for (const ValueCase& one : acceptedValues(option, m_command.kind, sample)) accept(option, one);
            if (option.isRepeatable) repeat(option, sample);
        }
        return std::move(m_cases);
    }

    std::vector<CommandCase> refused() {
        for (const OptionDescription& option : m_command.options) {
            if (!option.isRequired) continue;
            m_cases.push_back({"without the required option " + option.name,
                               {textWithout(m_samples.surroundings(option).front(), option)}});
        }
        const std::string unknown = ' ' + assignment(kUnknownName, "1", m_command.kind);
        m_cases.push_back({"with an option that is not described", {m_samples.least().text() + unknown}});
        for (const OptionDescription& option : m_command.options) {
            for (const ValueCase& one : refusedValues(option, m_command.kind)) refuse(option, one);
        }
        return std::move(m_cases);
    }

    std::vector<LargeInteger> largeIntegers() const {
        std::vector<LargeInteger> all;
        for (const OptionDescription& option : m_command.options) {
            if (option.type != OptionType_e::Int64) continue;
            const long double sample = std::strtold(m_samples.sampleOf(option).c_str(), nullptr);
            const std::string value = integerText(sample + kBeyondInt32);
            all.push_back({option.name, value, textWith(m_samples.surroundings(option).front(), option, value)});
        }
        return all;
    }

private:
    void accept(const OptionDescription& option, const ValueCase& accepted) {
        CommandCase added{option.name + ' ' + accepted.what, {}};
        for (const WrittenCommand& surrounding : m_samples.surroundings(option)) {
            added.texts.push_back(textWith(surrounding, option, accepted.value));
        }
        m_cases.push_back(std::move(added));
    }

    void repeat(const OptionDescription& option, const std::string& sample) {
        CommandCase added{option.name + " given twice", {}};
        const std::string again = ' ' + assignment(option.name, sample, m_command.kind);
        for (const WrittenCommand& surrounding : m_samples.surroundings(option)) {
            added.texts.push_back(textWith(surrounding, option, sample) + again);
        }
        m_cases.push_back(std::move(added));
    }

    void refuse(const OptionDescription& option, const ValueCase& refused) {
        m_cases.push_back({option.name + ' ' + refused.what,
                           {textWith(m_samples.surroundings(option).front(), option, refused.value)}});
    }

    const CommandDescription& m_command;
    const CommandSamples m_samples;
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
    return CommandSamples(addOn, command).least().text();
}

}  // namespace vexa::runner
