#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "commands/check/trial/Trial.h"

namespace vexa::runner {

/// What a command did.
struct Deed {
    bool accepted = false;
    std::string error;                  ///< its message
    std::vector<std::string> recorded;  ///< what it had recorded, macro lines
};

/// What comes between an add-on and a command that should go well.
struct Disturbance {
    std::string what;  ///< for people, for example "call 3 of VexaUtilStringAlloc fails"
    /// Rules whose breaches pass meanwhile.
    std::vector<std::string> suppressed;
    /// Whether a command that succeeds all the same has to record what it records undisturbed.
    bool successIsWhole = false;
    /// Runs the command disturbed. When it returns the disturbance is over.
    std::function<void(standin::Host& host, const std::function<void()>& command)> run;
};

/// A command in the state that those before it leave. Each case runs in a session of its own, with recording on.
class DisturbedCommand {
public:
    /// Runs \p step undisturbed behind \p before, any of which may fail: what it does then it has to do again later.
    DisturbedCommand(Trial& trial, std::vector<MacroCommand> before, MacroCommand step);

    /// What the calls of \p function return, undisturbed, in their order and as text.
    std::vector<std::string> resultsOf(const std::string& function) const;

    /// Runs the command disturbed in each of these ways, then again undisturbed, and unloads the add-on. One session
    /// serves many, which is quicker; what goes wrong is tried again alone.
    /// \throws CaseFailed when the contract is broken, when what was recorded cannot be replayed, or when the run at
    /// the
    ///         end does not do what it does undisturbed.
    void run(const std::vector<Disturbance>& disturbances) const;

    /// How many allocations the command asks for, undisturbed.
    std::size_t countAllocations() const;

private:
    using Disturbances = std::vector<Disturbance>;

    Disturbances::const_iterator runTogether(Disturbances::const_iterator at, Disturbances::const_iterator end) const;
    Deed runDisturbed(CheckedSession& session, const Disturbance& disturbance) const;
    Deed runOnce(CheckedSession& session) const;
    void runBefore(CheckedSession& session) const;
    void expectReplayable(const std::vector<std::string>& recorded) const;
    void expectSuccessIsWhole(const Deed& deed) const;
    void expectUndisturbed(const Deed& deed) const;
    std::string name() const;

    Trial& m_trial;
    std::vector<MacroCommand> m_before;
    MacroCommand m_step;
    Deed m_undisturbed;
    bool m_repeats = false;                                     // given twice, it does the same twice
    bool m_isSteady = false;                                    // in two sessions, it does the same
    std::map<std::string, std::vector<std::string>> m_results;  // of the calls of each function
};

/// The commands of the macros, each behind those before it; and one that no add-on knows, for commands that fail.
std::vector<DisturbedCommand> disturbedCommands(Trial& trial);

/// A case of a test that tries many.
struct DisturbedCase {
    std::size_t command = 0;  ///< of disturbedCommands()
    std::size_t rank = 0;     ///< the low ones come first
    Disturbance disturbance;
};

/// Tries \p cases, the low ranks of all commands first, until the time is up. Of each command some are always tried.
Verdict tryCases(Trial& trial, const std::vector<DisturbedCommand>& commands, std::vector<DisturbedCase> cases);

/// Numbers from 1 to \p count, all if there are at most \p most, in the order in which they are of interest: the first,
/// the last, and the others at random.
std::vector<std::size_t> sampled(Trial& trial, std::size_t count, std::size_t most);

}  // namespace vexa::runner
