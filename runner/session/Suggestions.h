#pragma once

#include <optional>
#include <string>
#include <vector>

#include "formats/MacroFile.h"
#include "language/Descriptions.h"

namespace vexa::runner {

/// Returns the descriptions beside \p addOns, the files of add-ons. An add-on without one is skipped. Prints what is
/// wrong with a description that cannot be read.
Descriptions descriptionsBeside(const std::vector<std::string>& addOns);

/// Suggests what the user meant by a command that an add-on refused.
class Suggestions {
public:
    /// \param addOns the files of the add-ons. Their descriptions are read when a command is refused, so a run in which
    ///               all goes well does not need them.
    explicit Suggestions(const std::vector<std::string>& addOns) : m_addOns(addOns) {}

    /// Returns suggestionFor() \p command; empty if its add-on has no description.
    std::string of(const MacroCommand& command);

    /// Returns the descriptions of the add-ons.
    const Descriptions& descriptions();

private:
    const std::vector<std::string> m_addOns;
    std::optional<Descriptions> m_descriptions;
};

/// Returns \p failure, and in a further line \p suggestion if it is not empty.
std::string withSuggestion(std::string failure, const std::string& suggestion);

}  // namespace vexa::runner
