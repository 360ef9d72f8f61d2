#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "commands/check/trial/CheckTest.h"
#include "formats/StyleFile.h"
#include "session/Session.h"

namespace vexa::runner {

class Confinement;
struct BlackBox;

/// The macro file of \p steps.
std::string macroOf(const std::vector<MacroCommand>& steps);

/// What is checked, and by what.
struct Subject {
    SessionOptions options;                    ///< the first add-on is checked; the macros need the others
    std::vector<MacroCommand> steps;           ///< the commands of all macros, in order
    std::vector<StyleSetting> style;           ///< the host's style settings
    std::uint64_t seed = 0;                    ///< of all that is random
    std::chrono::milliseconds time{};          ///< for how long a test that could go on for ever does
    const Confinement* confinement = nullptr;  ///< what a process of the test enters; null when it writes anywhere

    const std::string& addOn() const { return options.addOns.front(); }
};

/// What the add-on did wrong. Ends the test.
class CaseFailed : public std::runtime_error {
public:
    /// \param reason for people. \param macro a macro that shows it; empty when only the test does.
    explicit CaseFailed(const std::string& reason, std::string macro = {});
    const std::string& macro() const { return m_macro; }

private:
    std::string m_macro;
};

/// A test under way. What it notes survives a crash of its process.
class Trial {
public:
    /// \param blackBox where notes go, shared with the process that watches.
    Trial(const Subject& subject, BlackBox& blackBox);

    const Subject& subject() const { return m_subject; }
    /// Random numbers, the same ones whenever the test runs with the same seed.
    std::mt19937_64& random() { return m_random; }
    /// Notes what is tried from here on, for example "call 3 of VexaUtilStringAlloc fails". A failure, a crash or a
    /// hang is told with it, and with \p macro if that shows it.
    void nowTrying(const std::string& what, const std::string& macro = {});
    /// Whether the time of a test that could go on for ever is over.
    bool isTimeUp() const;
    /// A rule of severity warning was broken: the test ends as warned, unless it fails. The same reason counts once.
    void warn(const std::string& reason);
    /// The reasons of warn(), lines.
    std::string warnings() const;

private:
    friend class CheckedSession;
    const Subject& m_subject;
    BlackBox& m_blackBox;
    std::mt19937_64 m_random;
    std::chrono::steady_clock::time_point m_end;
    std::vector<std::string> m_warnings;
};

/// The session of a test case: a host of its own, with the add-on loaded. Notes in the black box which command runs and
/// which host call it is in.
class CheckedSession {
public:
    /// \throws CaseFailed when the add-on cannot be loaded.
    explicit CheckedSession(Trial& trial);
    CheckedSession(const CheckedSession&) = delete;
    CheckedSession& operator=(const CheckedSession&) = delete;
    ~CheckedSession();

    Session& session() { return m_session; }
    standin::Host& host() { return m_session.host(); }
    /// Runs a command.
    standin::CommandResult run(const MacroCommand& step);
    /// Runs a command that has to succeed, as in every case without faults.
    /// \throws CaseFailed when it fails, with its message and what was wrong so far.
    void runWell(const MacroCommand& step);
    /// \throws CaseFailed when a rule of severity error was broken so far; warnings go to Trial::warn().
    void expectContractKept();
    /// Unloads the add-on, and does the above: leaks show then.
    void end();

private:
    class Recorder;

    std::string breaches();

    Trial& m_trial;
    std::unique_ptr<Recorder> m_recorder;  // outlives the host, which tells it what happens
    Session m_session;
};

}  // namespace vexa::runner
