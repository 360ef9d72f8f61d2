#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace vexa::runner {

/// The command line, or a file of settings that goes with it, is refused. The program ends with
/// ExitStatus_e::BadUsageOrInput. Refusals.h has texts for it.
class UsageError : public std::runtime_error {
public:
    /// \param message      names the object and says what is wrong with it, on one line
    /// \param call         the program and the command whose help shows what is right: "vexa-standin run"; parse()
    ///                     fills it in
    /// \param suggestions  what the user may have meant, a line each: "rnu: did you mean run?"
    explicit UsageError(const std::string& message, std::string call = "", std::vector<std::string> suggestions = {})
        : std::runtime_error(message), m_call(std::move(call)), m_suggestions(std::move(suggestions)) {}

    /// "NAME: PROBLEM", where \p name is that of an option, an argument or a key.
    static UsageError in(const std::string& name, const std::string& problem) {
        return UsageError(name + ": " + problem);
    }

    const std::string& call() const { return m_call; }
    const std::vector<std::string>& suggestions() const { return m_suggestions; }

private:
    std::string m_call;
    std::vector<std::string> m_suggestions;
};

}  // namespace vexa::runner
