#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "vexastandin/Export.h"

namespace vexa::standin {

class Host;

/// An option of a command, for commands to be made of.
struct OptionForm {
    std::string name;                 ///< as written
    std::vector<std::string> values;  ///< its values, as written; at least one
    std::vector<std::string> others;  ///< rarer ones, most of them refused; may be empty
    std::size_t percent = 30;         ///< how often the option is given
};

/// A command of an add-on, for commands to be made of.
struct CommandForm {
    std::string word;                 ///< the command's name; not empty
    std::string assign;               ///< what stands between an option's name and its value, blanks included
    std::vector<OptionForm> options;  ///< all that it knows
};

/// Makes commands at random, and puts a host into any mode: for tests that run thousands of commands and expect no
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
/// The choices are the same ones whenever the seed is, on every machine.
class VEXASTANDIN_API RandomCommands {
public:
    /// Begins with \p seed.
    explicit RandomCommands(std::uint64_t seed);

    /// A command of \p forms, of which there must be one. Most often it is well-formed: its options in any order, now
    /// and then one doubled, or one of another command. One in ten is damaged: cut off, a byte less, a byte too many.
    std::string command(const std::vector<CommandForm>& forms);
    /// Puts \p host into any mode: recording or not, batch mode, playback; with a user who may press stop at any time.
    void setModes(Host& host);

    /// A number from 0 to \p end - 1; \p end must not be 0.
    std::size_t below(std::size_t end);
    /// True in \p percent of all cases.
    bool chance(std::size_t percent);

private:
    template <class Items>
    const auto& oneOf(const Items& items) {
        return items[below(items.size())];
    }
    const std::string& valueOf(const OptionForm& option);
    std::string assign(const CommandForm& command);
    std::string inAnyCase(std::string word);
    std::string damaged(std::string text);

    std::mt19937_64 m_random;
};

}  // namespace vexa::standin
