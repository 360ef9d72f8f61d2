#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "facts/Facts.h"
#include "vexa/VexaUtil.h"

namespace vexa::standin {

using facts::Fact;

/// How the host answers where its interface leaves that open. At first these are the answers of the stand-in in the
/// table of facts.
///
/// Each function expects a fact of its kind, and costs no more than reading an array.
/// Threads: safe from any, unless take() is called.
class HostAnswers {
public:
    HostAnswers();

    /// Takes an answer of another host.
    /// \return why the stand-in cannot answer so; empty if it can.
    std::string take(Fact fact, std::string_view answer);

    bool truth(Fact fact) const { return valueOf(fact) != 0; }
    GetValueReturnCode_e code(Fact fact) const { return static_cast<GetValueReturnCode_e>(valueOf(fact)); }
    /// Whether the answer is \p word, one of those in the table.
    bool is(Fact fact, std::string_view word) const { return valueOf(fact) == indexOf(fact, word); }
    /// The most of something that the host takes; nothing if the stand-in's own limits hold.
    std::optional<std::size_t> limit(Fact fact) const;

private:
    long valueOf(Fact fact) const { return m_values[static_cast<std::size_t>(fact)]; }
    /// The place of \p word among the words of \p fact; -1 if it is none of them.
    static constexpr long indexOf(Fact fact, std::string_view word);
    static std::optional<long> parse(Fact fact, std::string_view answer);

    std::array<long, facts::kFactCount> m_values{};
};

constexpr long HostAnswers::indexOf(Fact fact, std::string_view word) {
    std::string_view words = facts::infoOf(fact).limit;
    for (long index = 0;; ++index) {
        const std::size_t end = words.find('|');
        if (words.substr(0, end) == word) return index;
        if (end == std::string_view::npos) return -1;
        words.remove_prefix(end + 1);
    }
}

}  // namespace vexa::standin
