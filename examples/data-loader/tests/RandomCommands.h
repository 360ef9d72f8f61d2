#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "vexastandin/Host.h"

/// Commands made at random, for a host in any mode. Nothing in it is about one add-on: take it to another as it is.
namespace randomcommands {

/// An option of a command.
struct Option {
    const char* name;
    std::vector<const char*> values;  ///< as written
    std::vector<const char*> others;  ///< rarer ones, most of them refused
    std::size_t percent = 30;         ///< how often it is given
};

/// A command of an add-on.
struct Command {
    const char* word;
    const char* assign;  ///< what stands between name and value, blanks included
    std::vector<Option> options;
};

/// The random choices of one session: the same ones whenever it has the same seed.
class Choices {
public:
    explicit Choices(std::uint64_t seed) : m_random(seed) {}

    std::size_t below(std::size_t end) { return static_cast<std::size_t>(m_random() % end); }
    bool chance(std::size_t percent) { return below(100) < percent; }
    template <class Items>
    const auto& oneOf(const Items& items) {
        return items[below(items.size())];
    }

    /// A command of \p commands, most often well-formed: its options in any order, some doubled or of another command.
    std::string command(const std::vector<Command>& commands) {
        const Command& chosen = oneOf(commands);
        std::vector<std::pair<const Option*, const char*>> options;
        for (const Option& option : chosen.options) {
            if (chance(option.percent)) options.emplace_back(&option, valueOf(option));
        }
        if (chance(3) && !options.empty()) options.push_back(oneOf(options));
        const Command& other = oneOf(commands);
        if (chance(3) && !other.options.empty()) {
            const Option& foreign = oneOf(other.options);
            options.emplace_back(&foreign, valueOf(foreign));
        }
        std::shuffle(options.begin(), options.end(), m_random);

        std::string text = inAnyCase(chosen.word);
        for (const auto& [option, value] : options) text += std::string(" ") + option->name + assign(chosen) + value;
        return chance(10) ? damaged(text) : text;
    }

    /// Puts \p host into any mode, with a user who may stop the command at any time.
    void setModes(vexa::standin::Host& host) {
        host.setRecording(chance(70));
        host.setBatchMode(chance(15));
        host.setProcessingJournal(chance(15));
        host.setProcessingLayout(chance(15));
        host.releaseStop();
        if (chance(5)) host.pressStop();
        if (chance(10)) host.pressStopAtCheck(1 + below(10));
        if (chance(10)) host.pressStopAtPercent(static_cast<int>(below(101)));
    }

private:
    std::string inAnyCase(std::string word) {
        if (chance(10)) word[below(word.size())] ^= 0x20;
        return word;
    }

    const char* valueOf(const Option& option) {
        return !option.others.empty() && chance(8) ? oneOf(option.others) : oneOf(option.values);
    }

    const char* assign(const Command& command) {
        const std::vector<const char*> assigns = {"=", " = ", " =", "= ", " : ", "  =  ", " "};
        return chance(2) ? oneOf(assigns) : command.assign;
    }

    /// The text less a byte, with a byte too many, or cut off.
    std::string damaged(std::string text) {
        const std::string bytes = "'\"\\=[]-, \t\n\x01\xff";
        const std::size_t at = below(text.size());
        switch (below(3)) {
            case 0: text.erase(at, 1); break;
            case 1: text.insert(at, 1, oneOf(bytes)); break;
            default: text.resize(at); break;
        }
        return text;
    }

    std::mt19937_64 m_random;
};

}  // namespace randomcommands
