#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "commands/check/trial/CheckTest.h"
#include "coverage/CoverageObserver.h"
#include "formats/CommandDescription.h"
#include "formats/StyleFile.h"
#include "session/Session.h"

namespace vexa::runner {

class Confinement;
struct BlackBox;

/// Returns the text of a macro file with \p steps.
std::string macroOf(const std::vector<MacroCommand>& steps);

/// Returns the commands in the lines of a macro file.
std::vector<MacroCommand> stepsOf(const std::vector<std::string>& lines);

/// Returns the name of \p step in messages: `ID text (FILE:LINE)`.
std::string nameOf(const MacroCommand& step);

/// The add-on to check, and the input of the tests.
struct Subject {
    SessionOptions options;                       ///< the first add-on is checked; the macros need the others
    std::vector<MacroCommand> steps;              ///< the commands of all macros, in order
    std::optional<AddOnDescription> description;  ///< of the commands of the add-on; nothing if there is none
    std::string descriptionFile;                  ///< as messages name it
    std::vector<StyleSetting> style;              ///< the host's style settings
    std::uint64_t seed = 0;                       ///< of all random numbers
    std::chrono::milliseconds time{};             ///< the time for a test that could go on forever
    std::optional<CoverageSetting> coverage;      ///< what counts in the coverage; nothing if nobody wants it
    const Confinement* confinement = nullptr;     ///< the confinement of the test's process; null for none

    const std::string& addOn() const { return options.addOns.front(); }
};

/// An error of the add-on, which ends the test.
class CaseFailed : public std::runtime_error {
public:
    /// \param reason is for the user.
    /// \param macro  shows the error; empty if only the test shows it.
    explicit CaseFailed(const std::string& reason, std::string macro = {})
        : std::runtime_error(reason), m_macro(std::move(macro)) {}
    const std::string& macro() const { return m_macro; }

private:
    std::string m_macro;
};

/// A running test. Its notes survive a crash of its process.
class Trial {
public:
    /// \param blackBox where notes go, shared with the process that watches.
    Trial(const Subject& subject, BlackBox& blackBox);

    const Subject& subject() const { return m_subject; }
    /// Returns the source of random numbers, which depend only on the seed.
    std::mt19937_64& random() { return m_random; }
    /// Notes what the test tries from now on, for example "call 3 of VexaUtilStringAlloc fails". The report of a
    /// failure, a crash or a hang contains \p what, and \p macro, which may show the error.
    void nowTrying(const std::string& what, const std::string& macro = {});
    /// Returns true if the time for a test that could run forever is over.
    bool isTimeUp() const { return std::chrono::steady_clock::now() >= m_end; }
    /// Notes that a rule of severity warning was broken. The test ends as warned, unless it fails. Equal reasons count
    /// once.
    void warn(const std::string& reason);
    /// Returns the reasons given to warn(), one per line.
    std::string warnings() const;

    /// Notes a problem that has a place in a macro.
    void note(Problem problem) { m_problems.push_back(std::move(problem)); }
    const std::vector<Problem>& problems() const { return m_problems; }

private:
    friend class CheckedSession;
    const Subject& m_subject;
    BlackBox& m_blackBox;
    std::mt19937_64 m_random;
    std::chrono::steady_clock::time_point m_end;
    std::vector<std::string> m_warnings;
    std::optional<CoverageObserver> m_coverage;  // of all sessions, so that each fact is sent once
    std::vector<Problem> m_problems;
};

/// The session of a test case: a new host with the add-on loaded. Notes the current command and host call in the black
/// box.
class CheckedSession {
public:
    /// \throws CaseFailed if the add-on cannot be loaded.
    explicit CheckedSession(Trial& trial);
    ~CheckedSession();

    Session& session() { return m_session; }
    standin::Host& host() { return m_session.host(); }
    /// Runs a command.
    standin::CommandResult run(const MacroCommand& step);
    /// Runs a command that must succeed, because nothing disturbs it.
    /// \throws CaseFailed if it fails, with its message and the findings so far.
    void runWell(const MacroCommand& step);
    /// Runs commands as runWell() does, and calls end().
    void runWellAndEnd(const std::vector<MacroCommand>& steps);
    /// Returns the recorded commands as macro lines.
    std::vector<std::string> recorded() const;
    /// Passes warnings to Trial::warn().
    /// \throws CaseFailed if there is a finding of severity error.
    void expectContractKept();
    /// Unloads the add-on, and then calls expectContractKept(), because some leaks show only after unloading.
    void end();

private:
    class Recorder;

    std::string breaches();

    Trial& m_trial;
    std::unique_ptr<Recorder> m_recorder;  // the host calls it, so it must outlive the host
    Session m_session;
};

}  // namespace vexa::runner
