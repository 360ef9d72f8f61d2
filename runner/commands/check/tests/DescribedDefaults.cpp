#include "commands/check/tests/DescribedDefaults.h"

#include <cmath>
#include <cstdlib>
#include <optional>
#include <utility>

#include "language/MacroLine.h"
#include "language/ValueText.h"
#include "language/WrittenCommand.h"
#include "vexa/toolbox/Set.h"

namespace vexa::runner {
namespace {

constexpr long double kRecordedDigits = 1e-5L;  // toNameValueAssignment() writes six digits of a double

bool isTrue(const std::string& written) { return written.find_first_of("TtYy") == 0; }

std::string unquoted(const std::string& written) {
    return written.size() < 2 ? written : written.substr(1, written.size() - 2);
}

toolbox::Set setOf(const std::string& written) {
    toolbox::Set set;
    set.assign(written);
    return set;
}

bool isSameValue(const std::string& one, const std::string& other, OptionType_e type) {
    if (type == OptionType_e::Boolean) return isTrue(one) == isTrue(other);
    if (type == OptionType_e::Set) return setOf(one) == setOf(other);
    if (!isNumber(type)) return unquoted(one) == unquoted(other);
    const long double first = std::strtold(one.c_str(), nullptr);
    const long double second = std::strtold(other.c_str(), nullptr);
    const long double most = type == OptionType_e::Double ? kRecordedDigits * std::fabs(second) : 0;
    return std::fabs(first - second) <= most;
}

class DefaultTrial {
public:
    DefaultTrial(const AddOnDescription& addOn, const CommandDescription& command, const RecordCommand& record)
        : m_command(command), m_record(record), m_samples(addOn, command), m_descriptions(addOn) {}

    std::vector<std::string> mistakes() {
        compareRecordedWithoutOption();
        if (m_command.kind == CommandKind_e::Command) compareRecordedWithDefault();
        return std::move(m_mistakes);
    }

private:
    void compareRecordedWithoutOption() {
        const std::string least = m_samples.least().text();
        const std::vector<std::string> recorded = m_record(least);
        for (const OptionDescription& option : m_command.options) {
            if (!option.defaultValue || option.isRequired) continue;
            const auto value = valueIn(recorded, option);
            if (!value || whyWrong(*value, option, m_command.kind)) continue;
            if (isSameValue(*value, defaultOf(option), option.type)) continue;
            m_mistakes.push_back("records " + least + " with " + assigned(option, *value) +
                                 ", but its default is described as " + defaultOf(option));
        }
    }

    void compareRecordedWithDefault() {
        std::vector<std::string> mistakes;
        bool areDefaultsOmitted = false;
        for (const OptionDescription& option : m_command.options) {
            if (!option.defaultValue) continue;
            WrittenCommand command = m_samples.least();
            command.set(option, defaultOf(option));
            const std::vector<std::string> recorded = m_record(command.text());
            if (valueIn(recorded, option)) {
                mistakes.push_back("records " + command.text() + " with " + assigned(option, defaultOf(option)) +
                                   ", but omits defaults of other options: it has another default");
            } else if (!recorded.empty()) {
                areDefaultsOmitted = true;
            }
        }
        if (areDefaultsOmitted) m_mistakes.insert(m_mistakes.end(), mistakes.begin(), mistakes.end());
    }

    std::string defaultOf(const OptionDescription& option) const {
        return writtenValue(*option.defaultValue, option, m_command.kind);
    }
    std::string assigned(const OptionDescription& option, const std::string& value) const {
        return assignment(option.name, value, m_command.kind);
    }

    std::optional<std::string> valueIn(const std::vector<std::string>& recorded,
                                       const OptionDescription& option) const {
        for (const std::string& line : recorded) {
            const MacroLine parts = parseLine(line, m_descriptions);
            if (parts.command == nullptr || parts.command->name != m_command.name) continue;
            for (const WrittenOption& written : parts.options) {
                if (written.description == nullptr || written.description->name != option.name) continue;
                return std::string(textOf(written.value, line));
            }
        }
        return std::nullopt;
    }

    const CommandDescription& m_command;
    const RecordCommand& m_record;
    const CommandSamples m_samples;
    const Descriptions m_descriptions;
    std::vector<std::string> m_mistakes;
};

}  // namespace

std::vector<std::string> wrongDefaults(const AddOnDescription& addOn, const CommandDescription& command,
                                       const RecordCommand& record) {
    return DefaultTrial(addOn, command, record).mistakes();
}

}  // namespace vexa::runner
