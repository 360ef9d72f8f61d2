#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "coverage/Coverage.h"
#include "coverage/RuleCoverage.h"

namespace vexa::runner {

/// The facts about a run that decide what counts.
struct CoverageSetting {
    bool isStrict = false;                ///< recordings are played back
    bool hasTimeLimit = false;            ///< a command that does not return is a finding
    std::vector<std::string> suppressed;  ///< rules that do not count
    std::optional<Coverage> known;        ///< if given, other commands and options have no names
};

/// Collects the coverage of a run from its events, in their order.
///
/// Threads: one at a time.
class CoverageCollector {
public:
    explicit CoverageCollector(CoverageSetting setting);

    /// The host calls an add-on. Entries nest.
    /// \param kind "loading", "command" or "unloading", as in a trace
    void enter(std::string_view kind, const std::string& addOnId, const std::string& command, std::size_t thread);
    /// The add-on returns.
    void leave(bool succeeded);
    /// An add-on calls a host function.
    void call(std::string_view function, std::size_t thread);
    /// A call returned with \p result, text as in a trace.
    void answer(std::string_view function, const std::string& result);

    bool hasNews() const { return m_hasNews; }
    /// Returns the facts that are new since the last call.
    Coverage takeNews();

private:
    CommandCoverage& newsOf(const std::string& command);
    Names* answersOfCall(std::string_view function);
    std::string nameOf(const std::string& addOnId, const std::string& word) const;
    void noteOptions(const std::string& name, const std::string& text);
    void noteEnd(const char* end);
    void noteThread(std::size_t thread);
    void noteRules();

    CoverageSetting m_setting;
    std::unordered_map<std::string_view, standin::ResultKind_e> m_results;  // of all host functions
    Coverage m_seen;
    Coverage m_news;
    bool m_hasNews = false;
    RunEvents m_events;
    std::set<std::size_t> m_threads;
    std::vector<std::string> m_entries;  // the names of the running commands, the innermost last
};

}  // namespace vexa::runner
