#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "commands/check/trial/Trial.h"

namespace vexa::runner {

/// The result of a command.
struct Deed {
    bool accepted = false;
    std::string error;                  ///< its error message
    std::vector<std::string> recorded;  ///< the commands that it recorded, as macro lines
};

/// A way to disturb a command that otherwise succeeds.
struct Disturbance {
    std::string what;  ///< for people, for example "call 3 of VexaUtilStringAlloc fails"
    /// Runs the command with the disturbance, and then ends the disturbance.
    std::function<void(standin::Host& host, const std::function<void()>& command)> run;
    std::vector<std::string> suppressed = {};  ///< rules that the disturbed command may break
    bool successIsWhole = false;  ///< true if a disturbed command that succeeds must record the same as undisturbed
};

/// A command of the macros, with the commands before it. Each case runs in its own session, with recording on.
class DisturbedCommand {
public:
    /// Runs \p step undisturbed after \p before, which may fail. The later runs are compared with this one.
    DisturbedCommand(Trial& trial, std::vector<MacroCommand> before, MacroCommand step);

    /// Returns the results of the undisturbed calls of \p function, in order, as text.
    std::vector<std::string> resultsOf(const std::string& function) const;

    /// Runs the command with each of the disturbances, then again undisturbed, and unloads the add-on. Disturbances
    /// share a session, which is faster. After an error, each one is tried alone. \throws CaseFailed if the contract is
    /// broken, if a recorded command cannot be replayed, or if the last run
    ///         differs from the undisturbed one.
    void run(const std::vector<Disturbance>& disturbances) const;

    /// Returns the number of allocations of the undisturbed command.
    std::size_t countAllocations() const;

private:
    using Position = std::vector<Disturbance>::const_iterator;

    Position runTogether(Position at, Position end) const;
    Deed runDisturbed(CheckedSession& session, const Disturbance& disturbance) const;
    Deed runOnce(CheckedSession& session) const;
    void runBefore(CheckedSession& session) const;
    void expectReplayable(const std::vector<std::string>& recorded) const;
    void expectUsual(const Deed& deed, const std::string& wrong, const std::string& usually) const;

    Trial& m_trial;
    std::vector<MacroCommand> m_before;
    MacroCommand m_step;
    Deed m_undisturbed;
    bool m_repeats = false;   // the command has the same result when it runs twice in a session
    bool m_isSteady = false;  // the command has the same result in two sessions
    std::map<std::string, std::vector<std::string>> m_results;  // of the calls of each function
};

/// Disturbances by their rank: low ranks come first.
using RankedDisturbances = std::multimap<std::size_t, Disturbance>;

/// Disturbs each command of the macros, after the commands before it, and a command that the add-on does not know.
/// Tries the low ranks of all commands first, until the time is over, but at least some disturbances of each command.
/// \param whyNone the reason for skipping the test if \p disturbancesOf returns nothing for every command.
Verdict tryDisturbances(Trial& trial,
                        const std::function<RankedDisturbances(const DisturbedCommand& command)>& disturbancesOf,
                        const char* whyNone);

}  // namespace vexa::runner
