#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "vexastandin/Export.h"

namespace vexa::standin {

class Host;

/// An option that RandomCommands may write.
struct OptionForm {
    std::string name;                 ///< the name, as written in a command
    std::vector<std::string> values;  ///< values, as written in a command; at least one
    std::vector<std::string> others;  ///< rare values, most of which the add-on refuses; may be empty
    std::size_t percent = 30;         ///< how many commands in a hundred have the option
};

/// A command that RandomCommands may write.
struct CommandForm {
    std::string word;                 ///< the command's name; not empty
    std::string assign;               ///< the text between an option's name and its value, including blanks
    std::vector<OptionForm> options;  ///< the options of the command
};

/// Writes random commands and sets random modes of a host. Use it in tests that run thousands of commands and expect no
/// finding.
///
///     const std::vector<CommandForm> forms = {{"GREET", " = ", {{"TIMES", {"1", "2"}, {"-1", "many"}}}}};
///     RandomCommands random(seed);
///     for (int i = 0; i < 1000; ++i) {
///         random.setModes(tester.host());
///         const TestedCommand tested = tester.run(random.command(forms));
///         ASSERT_TRUE(tested.findings.empty()) << tested << "seed " << seed;
///     }
///
/// The same seed gives the same commands and modes, on every machine.
class VEXASTANDIN_API RandomCommands {
public:
    /// Starts the random choices with \p seed.
    explicit RandomCommands(std::uint64_t seed);

    /// Returns a command of one of \p forms, which must not be empty. Most commands are well-formed, with options in
    /// any order; sometimes an option is repeated or belongs to another command. One command in ten is damaged: it is
    /// cut off, or has a byte too few or too many.
    std::string command(const std::vector<CommandForm>& forms);
    /// Returns \p text, which must not be empty, with one damage: it is cut off, or has a byte too few or too many. A
    /// closing quote may then be missing: the command processor would wait for it forever.
    std::string damaged(std::string text);
    /// Sets random modes of \p host: recording, batch mode, playback, and when the user presses stop.
    void setModes(Host& host);

    /// Returns a random number from 0 to \p end - 1. \p end must not be 0.
    std::size_t below(std::size_t end);
    /// Returns true in \p percent of all calls.
    bool chance(std::size_t percent);

private:
    template <class Items>
    const auto& oneOf(const Items& items) {
        return items[below(items.size())];
    }
    const std::string& valueOf(const OptionForm& option);
    std::string assign(const CommandForm& command);
    std::string inAnyCase(std::string word);

    std::mt19937_64 m_random;
};

}  // namespace vexa::standin
