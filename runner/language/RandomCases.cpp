#include "language/RandomCases.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "language/ValueCases.h"
#include "language/ValueText.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kPercentWrong = 25;
constexpr std::size_t kPercentExample = 60;
constexpr std::size_t kPercentChanged = 20;  // of the options of a command
constexpr std::size_t kPercentRemoved = 10;
constexpr std::size_t kPercentAtAnEnd = 15;  // of the numbers without a limit
constexpr std::size_t kUsualNumbers = 100;   // from the minimum
constexpr std::size_t kUsualMembers = 8;
constexpr long double kLargestMember = 9223372036854775807.0L;
constexpr std::size_t kPercentOtherCase = 10;
constexpr char kCaseBit = 'a' ^ 'A';

std::vector<std::string> spellingsOfBoolean(CommandKind_e kind) {
    if (kind == CommandKind_e::Command) return {"TRUE", "FALSE", "true", "False"};
    return {"TRUE", "FALSE", "T", "f", "Yes", "no"};
}

// An option that no description has.
const OptionDescription& unknownOption() {
    static const OptionDescription option = [] {
        OptionDescription unknown;
        unknown.name = kUnknownName;
        unknown.type = OptionType_e::UInt64;
        return unknown;
    }();
    return option;
}

// The nearest number of the limits, so that the option may have it.
long double limited(long double value, const OptionDescription& option) {
    if (option.max) value = std::min(value, option.max->value);
    if (option.min) value = std::max(value, option.min->value);
    return value;
}

}  // namespace

RandomCases::RandomCases(const AddOnDescription& addOn, std::uint64_t seed) : m_random(seed) {
    for (const CommandDescription& command : addOn.commands) {
        m_commands.push_back({&command, CommandSamples(addOn, command)});
    }
}

RandomCase RandomCases::next() {
    const Choices& chosen = oneOf(m_commands);
    WrittenCommand command = vary(chosen);
    RandomCase made{chosen.command, "", ""};
    if (chance(kPercentWrong)) made.mistake = makeWrong(command, chosen);
    // Not std::shuffle(), because its order differs between C++ libraries.
    auto& parts = command.parts;
    for (std::size_t left = parts.size(); left > 1; --left) std::swap(parts[left - 1], parts[below(left)]);
    made.text = inAnyCase(command.text(), *chosen.command);
    return made;
}

WrittenCommand RandomCases::vary(const Choices& chosen) {
    const auto& examples = chosen.samples.examples();
    const bool isExample = !examples.empty() && chance(kPercentExample);
    WrittenCommand command = isExample ? oneOf(examples) : chosen.samples.least();
    for (const OptionDescription& option : chosen.command->options) {
        if (!option.isRequired && chance(kPercentRemoved)) command.remove(option);
        if (chance(kPercentChanged)) command.set(option, valueOf(option, chosen));
        // An example may lack a required option that an earlier command gives.
        if (option.isRequired && !command.has(option)) command.set(option, chosen.samples.sampleOf(option));
    }
    return command;
}

std::string RandomCases::valueOf(const OptionDescription& option, const Choices& chosen) {
    const CommandKind_e kind = chosen.command->kind;
    if (option.type == OptionType_e::Boolean) return oneOf(spellingsOfBoolean(kind));
    if (isNumber(option.type) && chance(50)) return numberOf(option);
    if (option.type == OptionType_e::Set && chance(50)) return setOf(option);
    std::vector<ValueCase> values = acceptedValues(option, kind, chosen.samples.sampleOf(option));
    // An Int32 also accepts numbers that are none.
    values.erase(std::remove_if(values.begin(), values.end(),
                                [&](const ValueCase& one) { return whyWrong(one.value, option, kind).has_value(); }),
                 values.end());
    return values.empty() ? chosen.samples.sampleOf(option) : oneOf(values).value;
}

std::string RandomCases::numberOf(const OptionDescription& option) {
    const long double usual = (option.min ? option.min->value : 0) + static_cast<long double>(below(kUsualNumbers));
    if (option.type == OptionType_e::Double) {
        return numberText(limited(usual / static_cast<long double>(1 + below(4)), option));
    }
    if (!chance(kPercentAtAnEnd)) return integerText(limited(usual, option));
    const DescribedNumber end = chance(50) ? leastOf(option.type) : greatestOf(option.type);
    return integerText(limited(end.value, option));
}

std::string RandomCases::setOf(const OptionDescription& option) {
    const long double least = option.min ? option.min->value : 1;
    const long double greatest = option.max ? option.max->value : std::min(least + kUsualMembers, kLargestMember);
    const auto member = [&] {
        return integerText(std::min(least + static_cast<long double>(below(kUsualMembers)), greatest));
    };
    const std::string first = member();
    switch (below(4)) {
        case 0: return '[' + first + ']';
        case 1: return '[' + first + ',' + member() + ']';
        case 2: return "[ " + first + " - " + integerText(greatest) + " ]";
        default: return '[' + first + '-' + integerText(greatest) + ":2]";
    }
}

std::string RandomCases::makeWrong(WrittenCommand& command, const Choices& chosen) {
    const auto& options = chosen.command->options;
    if (options.empty() || chance(10)) {
        command.set(unknownOption(), "1");
        return "with an option that is not described";
    }
    const OptionDescription& option = oneOf(options);
    if (option.isRequired && chance(30)) {
        command.remove(option);
        return "without the required option " + option.name;
    }
    const ValueCase wrong = wrongValueOf(option, chosen.command->kind);
    command.remove(option);
    command.set(option, wrong.value);
    return option.name + ' ' + wrong.what;
}

// There are several values of other types, but each limit is as likely as all of these.
ValueCase RandomCases::wrongValueOf(const OptionDescription& option, CommandKind_e kind) {
    std::vector<std::vector<ValueCase>> byKind;
    for (ValueCase& one : refusedValues(option, kind)) {
        if (byKind.empty() || byKind.back().front().what != one.what) byKind.emplace_back();
        byKind.back().push_back(std::move(one));
    }
    return oneOf(oneOf(byKind));
}

std::string RandomCases::inAnyCase(std::string text, const CommandDescription& command) {
    if (command.kind != CommandKind_e::Processor || !chance(kPercentOtherCase)) return text;
    char& letter = text[below(command.name.size())];
    const bool isLetter = (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z');
    if (isLetter) letter ^= kCaseBit;
    return text;
}

}  // namespace vexa::runner
