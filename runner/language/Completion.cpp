#include "language/Completion.h"

#include <algorithm>
#include <set>

#include "language/MacroLine.h"
#include "language/ValueText.h"

namespace vexa::runner {
namespace {

char asUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool startsInAnyCase(std::string_view text, std::string_view start) {
    return text.size() >= start.size() && std::equal(start.begin(), start.end(), text.begin(),
                                                     [](char a, char b) { return asUpper(a) == asUpper(b); });
}

Completion startingWith(std::string_view line, std::size_t begin, const std::vector<std::string>& texts) {
    Completion completion{begin, {}};
    std::copy_if(texts.begin(), texts.end(), std::back_inserter(completion.texts),
                 [&](const std::string& text) { return startsInAnyCase(text, line.substr(begin)); });
    return completion;
}

// Returns the options that the line may still get, the required ones first.
std::vector<std::string> missingOptions(const MacroLine& parts, std::size_t begin) {
    std::set<const OptionDescription*> given;
    for (const WrittenOption& option : parts.options) {
        if (option.name.begin != begin) given.insert(option.description);
    }
    std::vector<std::string> names;
    for (const bool isRequired : {true, false}) {
        for (const OptionDescription& option : parts.command->options) {
            const bool isPossible = option.isRepeatable || given.count(&option) == 0;
            if (isPossible && option.isRequired == isRequired) {
                names.push_back(assignment(option.name, "", parts.command->kind));
            }
        }
    }
    return names;
}

std::vector<std::string> valuesOf(const OptionDescription& option, CommandKind_e kind) {
    if (option.type == OptionType_e::Boolean) return {"TRUE", "FALSE"};
    std::vector<std::string> values;
    const auto add = [&](const std::string& value) {
        if (std::find(values.begin(), values.end(), value) == values.end()) values.push_back(value);
    };
    if (option.defaultValue) add(writtenValue(*option.defaultValue, option, kind));
    for (const std::string& value : option.values) add(writtenValue(value, option, kind));
    if (option.type == OptionType_e::Set) {
        if (option.min && option.max) add('[' + option.min->text + '-' + option.max->text + ']');
        return values;
    }
    if (option.min) add(option.min->text);
    if (option.max) add(option.max->text);
    return values;
}

Completion optionCompletion(std::string_view line, const MacroLine& parts) {
    const std::size_t end = line.size();
    const WrittenOption* const last = parts.options.empty() ? nullptr : &parts.options.back();
    const bool isInName = last != nullptr && !last->hasAssign;
    if (isInName && last->name.end != end) return {end, {}};  // the equals sign is missing
    const bool isInValue = last != nullptr && last->hasAssign && last->value.end == end;
    if (isInValue && last->description == nullptr) return {end, {}};
    if (isInValue) return startingWith(line, last->value.begin, valuesOf(*last->description, parts.command->kind));
    const std::size_t begin = isInName ? last->name.begin : end;
    return startingWith(line, begin, missingOptions(parts, begin));
}

}  // namespace

Completion completionAt(std::string_view line, const Descriptions& descriptions) {
    const MacroLine parts = parseLine(line, descriptions);
    if (!parts.isCommand()) {
        const bool isBlank = line.find_first_not_of(" \t") == std::string_view::npos;
        return isBlank ? Completion{line.size(), descriptions.ids()} : Completion{line.size(), {}};
    }
    if (parts.id.end == line.size()) return startingWith(line, parts.id.begin, descriptions.ids());
    if (parts.addOn == nullptr) return {line.size(), {}};
    if (parts.word.end == line.size()) return startingWith(line, parts.word.begin, commandNames(*parts.addOn));
    return parts.command == nullptr ? Completion{line.size(), {}} : optionCompletion(line, parts);
}

}  // namespace vexa::runner
