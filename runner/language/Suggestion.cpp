#include "language/Suggestion.h"

#include <vector>

#include "language/MacroLine.h"
#include "text/NearNames.h"
#include "text/ShortText.h"

namespace vexa::runner {
namespace {

std::string suggestionOf(std::string_view written, const std::vector<std::string>& names) {
    const std::string name = shortText(written);
    const std::vector<std::string> near = nearNames(name, names);
    return near.empty() ? "" : name + ": did you mean " + alternatives(near) + '?';
}

}  // namespace

std::string suggestionFor(std::string_view command, const AddOnDescription& addOn) {
    const std::string line = addOn.addOn + ' ' + std::string(command);
    const Descriptions descriptions(addOn);
    const MacroLine parts = parseLine(line, descriptions);
    if (parts.word.isEmpty()) return "";
    if (parts.command == nullptr) return suggestionOf(textOf(parts.word, line), commandNames(addOn));
    for (const WrittenOption& option : parts.options) {
        if (option.description != nullptr || option.name.isEmpty()) continue;
        std::string suggestion = suggestionOf(textOf(option.name, line), optionNames(*parts.command));
        if (!suggestion.empty()) return suggestion;
    }
    return "";
}

}  // namespace vexa::runner
