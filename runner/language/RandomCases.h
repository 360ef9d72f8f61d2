#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "language/ValueCases.h"
#include "language/WrittenCommand.h"

namespace vexa::runner {

/// A random command, and what its description says about it.
struct RandomCase {
    const CommandDescription* command = nullptr;
    std::string text;     ///< without the add-on's id
    std::string mistake;  ///< for example "TIMES above its maximum"; empty if the description allows the command
};

/// Writes random commands of a described add-on. One in four is wrong, in one way: without a required option, with an
/// unknown option, with a value of another type or outside of the limits. The others vary the examples: options come
/// and go, in any order, with values at the limits and between them. An add-on may refuse some of these, because a
/// description does not say which options exclude each other.
///
/// Texts are those of the examples, because a text may name a file to write. The same seed gives the same commands on
/// every machine.
class RandomCases {
public:
    /// \param addOn has a command, and outlives this object.
    RandomCases(const AddOnDescription& addOn, std::uint64_t seed);

    RandomCase next();

private:
    struct Choices {
        const CommandDescription* command;
        CommandSamples samples;
    };

    std::size_t below(std::size_t end) { return static_cast<std::size_t>(m_random() % end); }
    bool chance(std::size_t percent) { return below(100) < percent; }
    template <class Items>
    const auto& oneOf(const Items& items) {
        return items[below(items.size())];
    }
    WrittenCommand vary(const Choices& chosen);
    std::string valueOf(const OptionDescription& option, const Choices& chosen);
    std::string numberOf(const OptionDescription& option);
    std::string setOf(const OptionDescription& option);
    ValueCase wrongValueOf(const OptionDescription& option, CommandKind_e kind);
    std::string makeWrong(WrittenCommand& command, const Choices& chosen);
    std::string inAnyCase(std::string text, const CommandDescription& command);

    std::mt19937_64 m_random;
    std::vector<Choices> m_commands;
};

}  // namespace vexa::runner
