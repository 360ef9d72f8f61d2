#pragma once

#include <string>
#include <vector>

#include "formats/CommandDescription.h"

namespace vexa::runner {

/// A command as its options and their values.
struct WrittenCommand {
    struct Part {
        const OptionDescription* option;
        std::string value;  ///< as a command has it
    };
    const CommandDescription* command;
    std::vector<Part> parts = {};

    bool has(const OptionDescription& option) const;
    /// Sets the value of \p option, which replaces an earlier one.
    void set(const OptionDescription& option, const std::string& value);
    void remove(const OptionDescription& option);
    /// Returns the command without the add-on's id.
    std::string text() const;
};

/// What the examples of a command say about the values of its options.
class CommandSamples {
public:
    /// \param addOn   has \p command.
    /// \param command must outlive this object.
    CommandSamples(const AddOnDescription& addOn, const CommandDescription& command);

    const std::vector<WrittenCommand>& examples() const { return m_examples; }
    /// Returns the command with only its required options.
    WrittenCommand least() const;
    /// Returns the examples with \p option, and then the least command.
    std::vector<WrittenCommand> surroundings(const OptionDescription& option) const;
    /// Returns a value that the add-on should accept: of an example, the default, a limit, or such as 1, 'text' or [1].
    std::string sampleOf(const OptionDescription& option) const;

private:
    const CommandDescription& m_command;
    std::vector<WrittenCommand> m_examples;
};

}  // namespace vexa::runner
