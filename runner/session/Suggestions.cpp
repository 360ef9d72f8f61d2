#include "session/Suggestions.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "formats/DescriptionFile.h"
#include "language/Suggestion.h"

namespace vexa::runner {

Descriptions descriptionsBeside(const std::vector<std::string>& addOns) {
    Descriptions descriptions;
    for (const std::string& addOn : addOns) {
        const std::string file = descriptionBeside(addOn);
        std::error_code ignored;
        if (!std::filesystem::exists(file, ignored)) continue;
        if (auto description = readDescription(file)) descriptions.add(std::move(*description));
    }
    return descriptions;
}

std::string Suggestions::of(const MacroCommand& command) {
    const AddOnDescription* const addOn = descriptions().find(command.addOnId);
    return addOn == nullptr ? "" : suggestionFor(command.text, *addOn);
}

const Descriptions& Suggestions::descriptions() {
    if (!m_descriptions) m_descriptions = descriptionsBeside(m_addOns);
    return *m_descriptions;
}

std::string withSuggestion(std::string failure, const std::string& suggestion) {
    if (!suggestion.empty()) failure += "\nhint:  " + suggestion;
    return failure;
}

}  // namespace vexa::runner
