#pragma once

#include <string>

namespace vexa::runner {

/// How a test of the check came out.
enum class Outcome_e {
    Passed,
    Warned,    ///< it works, but a rule of severity warning was broken
    Skipped,   ///< there was nothing to test: no macro, or no add-on that can be loaded
    Failed,    ///< the add-on did wrong
    Crashed,   ///< the add-on took its process down: a signal, exit(), want of memory
    TimedOut,  ///< a command did not return
};

/// What came of a test.
struct Verdict {
    Outcome_e outcome = Outcome_e::Passed;
    std::string reason = {};  ///< for people, lines; empty when passed
    std::string macro = {};   ///< a macro that shows it; empty when only the test itself does
};

/// What a test needs, or else is skipped.
enum class Needs_e {
    File,     ///< the add-on's file
    Loading,  ///< an add-on that can be loaded
    Commands  ///< commands of a macro, besides: the subject has steps then
};

class Trial;

/// A test that an add-on has to pass.
struct CheckTest {
    const char* name;     ///< short and stable, as --only takes it, for example "host-call-fails"
    int level;            ///< the lowest level that has it, 1 to 3
    Needs_e needs;        ///< what it is skipped without
    const char* summary;  ///< what is tested, in one sentence
    const char* why;      ///< what users suffer from add-ons that do not pass
    /// Runs it. What the add-on does wrong is returned, or thrown as a CaseFailed.
    Verdict (*run)(Trial& trial);
    /// Whether its commands are texts that the user did not write. They may write anywhere, so the test works in a copy
    /// of the current folder, in a process that can write nowhere else; and the macro of its verdict can be made
    /// smaller.
    bool isWild = false;
};

}  // namespace vexa::runner
