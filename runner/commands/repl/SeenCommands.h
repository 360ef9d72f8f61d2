#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>

namespace vexa::runner {

/// Remembers the commands of add-ons that have run. A host does not know which commands an add-on has, so these are all
/// that a help text can name without a description.
class SeenCommands {
public:
    void add(const std::string& addOnId, const std::string& text, bool isAccepted);

    /// Returns one line for each command of the add-on, sorted by name; empty if none has run:
    ///
    ///     MEAN  run 3 times, 1 failed; options: COUNT, ZONES
    ///
    /// \param word the command to describe; empty for all of them
    std::string describe(const std::string& addOnId, const std::string& word) const;

private:
    struct Seen {
        std::size_t runs = 0;
        std::size_t failures = 0;
        std::set<std::string> options;
    };

    std::map<std::string, std::map<std::string, Seen>> m_commands;  // by add-on and word
};

}  // namespace vexa::runner
