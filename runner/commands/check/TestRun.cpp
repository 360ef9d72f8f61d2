#include "commands/check/TestRun.h"

#include <sys/wait.h>

#include <cstring>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <system_error>
#include <utility>

#include "commands/check/MacroShrinker.h"
#include "commands/check/trial/BlackBox.h"
#include "commands/check/trial/Confinement.h"
#include "session/CoverageNotes.h"
#include "session/watch/Death.h"
#include "system/files/ScratchFolder.h"
#include "terminal/Console.h"
#include "text/Lines.h"
#include "text/Seconds.h"
#include "text/ShortText.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kOutputLines = 12;
constexpr const char* kWritesAnywhere = "its commands may write to any file";

std::string whatWasTried(const BlackBox& box) {
    const std::string tried = box.tried.text();
    return tried.empty() ? "" : "tried: " + tried;
}

// Runs the test in the process of the test, and returns its verdict.
Verdict verdictOf(const CheckTest& test, Trial& trial, const BlackBox& box) {
    const auto failed = [&](const std::string& reason, std::string macro) {
        std::string lines = reason;
        addLine(lines, whatWasTried(box));
        addLine(lines, trial.warnings());
        if (macro.empty()) macro = box.macro.text();
        return Verdict{Outcome_e::Failed, lines, std::move(macro)};
    };
    try {
        Verdict verdict = test.run(trial);
        const std::string warnings = trial.warnings();
        if (!warnings.empty() && verdict.outcome == Outcome_e::Passed) verdict.outcome = Outcome_e::Warned;
        addLine(verdict.reason, warnings);
        return verdict;
    } catch (const CaseFailed& failure) {
        return failed(failure.what(), failure.macro());
    } catch (const std::bad_alloc&) {
        return failed("the test ran out of memory", "");
    } catch (const std::exception& error) {
        return failed(std::string("the test could not run: ") + error.what(), "");
    }
}

Verdict verdictOf(const CheckTest& test, const Subject& subject, BlackBox& box) {
    Trial trial(subject, box);
    Verdict verdict = verdictOf(test, trial, box);
    verdict.problems = trial.problems();
    return verdict;
}

std::string whatRan(const BlackBox& box) {
    std::string lines = whatWasTried(box);
    const std::string entry = box.entry.text();
    const std::string call = box.hostCall.text();
    if (entry.empty()) {
        addLine(lines, "the add-on had not been called");
    } else {
        addLine(lines, (box.isInAddOn ? "during: " : "after: ") + entry);
        addLine(lines, call.empty() ? "it had not called the host"
                                    : (box.isInHostCall ? "in host call " : "last host call: ") + call);
    }
    return lines;
}

std::string stackLines(const StackReport& stacks) {
    return stacks.isEmpty() ? "" : '\n' + std::string(withoutTrailingBlanks(textOf(stacks)));
}

std::string lastLinesOf(const std::string& output) {
    const std::vector<std::string> lines = linesOf(output);
    const std::size_t first = lines.size() > kOutputLines ? lines.size() - kOutputLines : 0;
    std::string text;
    for (std::size_t i = first; i != lines.size(); ++i) addLine(text, "    " + lines[i]);
    return text.empty() ? "" : "the last output:\n" + text;
}

std::string howItEnded(const ProcessEnd& end, const BlackBox& box, std::chrono::milliseconds timeout) {
    if (end.hasTimedOut() && end.verdict) return "its process did not end";
    if (end.hasTimedOut() && box.isInAddOn) return "the add-on did not return within " + secondsText(timeout);
    if (end.hasTimedOut()) return "the test made no progress";
    if (end.hasLeft()) return "its outcome could not be reported: the add-on closed files that it does not own";
    if (WIFSIGNALED(end.waitStatus)) {
        const int number = WTERMSIG(end.waitStatus);
        const char* const name = sigabbrev_np(number);
        return "SIG" + (name == nullptr ? std::to_string(number) : std::string(name)) + ": " + strsignal(number);
    }
    return "the add-on ended the process, with status " + std::to_string(WEXITSTATUS(end.waitStatus));
}

// The problem of a process that a command of a macro has ended, or that was killed in such a command.
std::vector<Problem> problemsOf(const ProcessEnd& end, const BlackBox& box, std::chrono::milliseconds timeout) {
    if (!box.isInAddOn || end.work.place.empty()) return {};
    Problem problem = problemOf(end.work, kProcessEnded, howItEnded(end, box, timeout));
    if (end.hasTimedOut()) problem.rule = kCommandTimeout;
    addStacks(problem, end.stacks);
    return {problem};
}

bool isWell(const ProcessEnd& end) { return end.hasLeft() && end.verdict; }

// Runs `work` in another process. Returns the verdict of that process, or a verdict about the way in which it ended.
Verdict watchedVerdict(const TestSetting& setting, BlackBox& box, const std::function<Verdict()>& work) {
    const ProcessEnd end = runWatched(setting, box, work);
    const bool isPassed = isWell(end) && end.verdict->outcome <= Outcome_e::Skipped;
    if (isPassed) return *end.verdict;
    Verdict verdict =
        isWell(end) ? *end.verdict
                    : Verdict{end.hasTimedOut() ? Outcome_e::TimedOut : Outcome_e::Crashed,
                              howItEnded(end, box, setting.timeout) + '\n' + whatRan(box) + stackLines(end.stacks),
                              box.macro.text(), problemsOf(end, box, setting.timeout)};
    if (box.wantedMemory) addLine(verdict.reason, "the process ran out of memory on the way");
    addLine(verdict.reason, lastLinesOf(end.out.text));
    return verdict;
}

void shrinkMacro(Verdict& verdict, const Subject& subject, const TestSetting& setting) {
    if (verdict.outcome <= Outcome_e::Skipped || verdict.macro.empty()) return;
    std::string smaller = shrunkMacro(setting, subject, verdict.macro);
    if (smaller == verdict.macro) return;
    addLine(verdict.reason, "a smaller macro shows the same error:\n    " + shortText(smaller));
    verdict.macro = std::move(smaller);
}

// Called in the process of a test whose commands may be any text.
Verdict confinedVerdictOf(const CheckTest& test, const Subject& subject, BlackBox& box) {
    try {
        subject.confinement->enter();
    } catch (const std::system_error& error) {
        return {Outcome_e::Skipped,
                std::string(kWritesAnywhere) + ", and this system cannot confine it: " + error.what()};
    }
    return verdictOf(test, subject, box);
}

std::string refusalsText(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " attempt to change a file outside of its folder was refused"
                                               : " attempts to change files outside of its folder were refused");
}

void runWild(const CheckTest& test, const Subject& subject, const TestSetting& setting, BlackBox& box,
             TestResult& result) {
    Verdict& verdict = result.verdict;
    if (setting.inProcess) {
        verdict = {Outcome_e::Skipped, std::string(kWritesAnywhere) + ", and only a separate process can be confined"};
        return;
    }
    Subject movable = subject;
    for (std::string& file : movable.options.addOns) file = std::filesystem::absolute(file);
    std::optional<ScratchFolder> scratch;
    try {
        scratch.emplace();
    } catch (const std::exception& error) {
        verdict = {Outcome_e::Skipped, std::string("it needs a copy of the current folder, which cannot be made: ") +
                                           error.what() +
                                           "\nrun the check in a folder with the files of the macros and little else"};
        return;
    }
    const Confinement confinement(scratch->path(), scratch->temporary());
    movable.confinement = &confinement;
    const CurrentFolder there(scratch->copy());
    const auto task = [&] { return confinedVerdictOf(test, movable, box); };
    verdict = watchedVerdict(setting, box, task);
    result.refusedWrites = confinement.refusals();
    if (result.refusedWrites > 0) addLine(verdict.reason, refusalsText(result.refusedWrites));
    shrinkMacro(verdict, movable, setting);
}

}  // namespace

TestResult runTest(const CheckTest& test, const Subject& subject, const TestSetting& setting) {
    const SharedMemory<BlackBox> box;
    const auto begin = BlackBox::Clock::now();
    TestResult result;
    result.test = &test;
    if (test.isWild) {
        runWild(test, subject, setting, *box, result);
    } else if (setting.inProcess) {
        const auto process = std::make_unique<ProcessBox>();
        box->process = process.get();
        Coverage unwanted;
        CoverageReceiver receiver(setting.coverage == nullptr ? unwanted : *setting.coverage);
        box->notes = &receiver;
        result.verdict = verdictOf(test, subject, *box);
    } else {
        result.verdict = watchedVerdict(setting, *box, [&] { return verdictOf(test, subject, *box); });
    }
    result.duration = std::chrono::duration_cast<std::chrono::milliseconds>(BlackBox::Clock::now() - begin);
    result.addOnIds = linesOf(box->addOnIds.text());
    return result;
}

}  // namespace vexa::runner
