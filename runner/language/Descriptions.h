#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "formats/CommandDescription.h"

namespace vexa::runner {

/// The descriptions of several add-ons.
class Descriptions {
public:
    Descriptions() = default;
    explicit Descriptions(AddOnDescription description) { add(std::move(description)); }

    /// Adds a description. It replaces an earlier one of the same add-on.
    void add(AddOnDescription description);
    /// Returns the description of the add-on \p id, valid until add(); null if there is none.
    const AddOnDescription* find(std::string_view id) const;
    /// Returns the ids of the described add-ons.
    std::vector<std::string> ids() const;

private:
    std::map<std::string, AddOnDescription, std::less<>> m_byId;
};

/// Returns the command that users mean by \p word, in any letter case; null if there is none.
const CommandDescription* findCommand(const AddOnDescription& addOn, std::string_view word);

/// Returns the option that \p command reads by \p name; null if there is none. A processor takes any letter case.
const OptionDescription* findOption(const CommandDescription& command, std::string_view name);

/// Return the names in their order.
std::vector<std::string> commandNames(const AddOnDescription& addOn);
std::vector<std::string> optionNames(const CommandDescription& command);

}  // namespace vexa::runner
