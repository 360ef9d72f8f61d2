#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "formats/MacroFile.h"
#include "stacks/StackReport.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {

/// A place of a problem.
struct ProblemPlace {
    std::string file;        ///< as the user wrote it
    std::size_t line = 0;    ///< counted from 1; 0 for the whole file
    std::string text;        ///< the command on this line, or what happened there; may be empty
    std::size_t column = 1;  ///< where the text starts in the line, in characters, counted from 1
};

/// Something that a build server or an editor should show to the author of an add-on: a breach of the contract, a
/// failed command, a crash, a test that did not pass. All texts are printable.
struct Problem {
    std::string rule;  ///< a rule of the contract, one of problemRules(), or a rule of the report
    standin::Severity_e severity = standin::Severity_e::Error;
    std::string message;                ///< one or more lines
    std::string details;                ///< more lines; may be empty
    ProblemPlace place;                 ///< the place that the reader should open
    std::optional<ProblemPlace> other;  ///< the place where the problem started
    std::string debug;                  ///< the command that shows the problem in a debugger; may be empty
};

/// The problems that a command of the program found.
struct ProblemReport {
    std::string command;  ///< of the program, for example "check"
    std::vector<Problem> problems;
    std::vector<standin::Rule> rules = {};  ///< rules that only this command has, such as the tests of "check"
    int exitStatus = 0;
    bool hasRun = true;  ///< false if the command could not do its work
    std::vector<std::pair<std::string, std::size_t>> properties = {};
};

/// \name Rules that are not part of the host's contract
/// @{
inline constexpr const char* kCommandFailed = "command-failed";
inline constexpr const char* kMacroRefused = "macro-refused";
inline constexpr const char* kProcessEnded = "process-ended";
inline constexpr const char* kMacroFailed = "macro-test-failed";
/// @}

/// Returns the rule \p name of the contract, of this header or of \p report; null if there is none.
const standin::Rule* findRule(const ProblemReport& report, std::string_view name);

/// Returns the place `FILE:LINE`. A text without a line is a file.
ProblemPlace placeOf(const std::string& fileAndLine);

/// Returns the problem of a breach of the contract. The place to open is a line of the add-on's source, if one is
/// known: that of the call that broke the rule, or of the one that started the problem if the end of the command broke
/// it. The other place is then the macro's line. Otherwise the place is the macro's line; \p file if the breach was not
/// seen in a command of a macro.
Problem problemOf(const standin::Finding& finding, const std::string& file);

/// Returns the problem that \p command broke \p rule, which is one of the above. If the line of \p source is known,
/// this is the place to open, and the macro's line is the other place.
Problem problemOf(const MacroCommand& command, const char* rule, const std::string& message,
                  const standin::SourcePlace& source = {});

/// Returns the problem of \p file, a macro file, about which its reader says \p message: `FILE:LINE: why`.
Problem problemOf(const std::string& file, const std::string& message);

/// Adds the stacks to the details of \p problem. If the line in the source of the add-on is known, it becomes the
/// place, and the macro's line the other place.
void addStacks(Problem& problem, StackReport stacks);

/// Returns the message and the details.
std::string wholeText(const Problem& problem);

/// Returns a fingerprint for each problem. It has no line number, so it stays the same when lines are added before the
/// problem. Equal problems get different fingerprints.
std::vector<std::string> fingerprintsOf(const std::vector<Problem>& problems);

/// \name A problem as text, to send it to another process
/// @{
std::string packed(const Problem& problem);
Problem unpackedProblem(std::string_view text);
/// @}

}  // namespace vexa::runner
