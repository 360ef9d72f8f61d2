#pragma once

#include <string>
#include <vector>

#include "formats/Problem.h"

namespace vexa::runner {

/// The outcome of a test.
enum class Outcome_e {
    Passed,
    Warned,    ///< the test found a problem of severity warning
    Skipped,   ///< the test could not run, for example without a macro
    Failed,    ///< the add-on made an error
    Crashed,   ///< the add-on ended its process: by a signal, by exit(), or without memory
    TimedOut,  ///< a command did not return
};

/// The outcome of a test, and its reason.
struct Verdict {
    Outcome_e outcome = Outcome_e::Passed;
    std::string reason = {};             ///< lines for the user; may be empty if the test passed
    std::string macro = {};              ///< a macro that shows the error; empty if only the test shows it
    std::vector<Problem> problems = {};  ///< what build servers show; empty if it has no place in a macro
};

/// What a test needs. If it is missing, the test is skipped.
enum class Needs_e {
    File,        ///< the add-on's file
    Loading,     ///< an add-on that can be loaded
    Commands,    ///< an add-on that can be loaded, and a macro with commands
    Description  ///< an add-on that can be loaded, and a description of its commands
};

class Trial;

/// A test that an add-on has to pass.
struct CheckTest {
    const char* name;     ///< short and stable, as --only takes it, for example "host-call-fails"
    int level;            ///< the lowest level that has the test, 1 to 3
    Needs_e needs;        ///< the test is skipped without it
    const char* summary;  ///< what is tested, in one sentence
    const char* why;      ///< what goes wrong for users if an add-on does not pass
    /// Runs the test. It returns an error of the add-on, or throws it as a CaseFailed.
    Verdict (*run)(Trial& trial);
    /// True if the test runs commands that the user did not write. Such commands may write to any file, so the test
    /// works in a copy of the current folder, in a process that can write nowhere else. shrunkMacro() makes the macro
    /// of its verdict smaller.
    bool isWild = false;
};

}  // namespace vexa::runner
