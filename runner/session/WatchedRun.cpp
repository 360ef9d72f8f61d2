#include "session/WatchedRun.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <system_error>

#include "coverage/CoverageFile.h"
#include "formats/ResultsFile.h"
#include "session/DebugCall.h"
#include "session/FindingPrinter.h"
#include "session/ProblemOutputs.h"
#include "session/watch/Death.h"
#include "system/files/MemoryFile.h"
#include "system/files/WholeFile.h"
#include "system/processes/Tracer.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

bool isBroken(int descriptor) {
    pollfd polled{descriptor, POLLOUT, 0};
    return poll(&polled, 1, 0) > 0 && (polled.revents & POLLERR) != 0;
}

// Returns true if SIGPIPE ended the process, because nobody reads its output any more.
bool endedForWantOfReaders(const ProcessOutcome& outcome) {
    const bool isPipe = WIFSIGNALED(outcome.waitStatus) && WTERMSIG(outcome.waitStatus) == SIGPIPE;
    return isPipe && (isBroken(STDOUT_FILENO) || isBroken(STDERR_FILENO));
}

// The run of a single macro file. It prints on the outputs of the program.
class OneRun : public UserWork {
public:
    explicit OneRun(const RunOptions& options)
        : m_options(options),
          m_results(options.json ? std::make_unique<LiveFile>(*options.json) : nullptr),
          m_run(options,
                [this](auto lines) {
                    if (m_results) m_results->append(lines);
                }),
          m_problems(options.problems) {
        m_run.outputs().open(options.record, options.journal);
    }

    ExitStatus_e execute() {
        if (m_options.inProcess || isTraced()) {
            const auto box = std::make_unique<ProcessBox>();
            m_status = runMacro(m_options, *box, m_run.outputs());
        } else {
            runInOtherProcess();
        }
        if (m_options.coverage) addToCoverageFile(*m_options.coverage, m_run.outputs().coverage());
        if (m_results) m_results->close();
        m_problems.write(runReport(m_run.outputs().problems(), m_status));
        return m_status;
    }

    int run(std::size_t, ProcessBox& box, NotesInterface& notes) override {
        return static_cast<int>(runMacro(m_options, box, notes));
    }
    NotesInterface* notesOf(std::size_t, std::function<KeptText()>) override { return &m_run.outputs(); }
    void end(std::size_t, const ProcessBox& box, const ProcessOutcome& outcome) override {
        m_areTracesOpen = box.areTracesOpen;
        if (wasInterrupted(outcome)) throw EndedBySignal{SIGINT};
        if (endedForWantOfReaders(outcome)) throw EndedBySignal{SIGPIPE};
        clearStatusOf(box);
        if (outcome.end == End_e::Died) m_crash = crashOf(box, outcome);
        m_status = m_run.judge(box, outcome);
    }
    void killed(std::size_t index, const ProcessBox& box, int signal) override {
        m_areTracesOpen = box.areTracesOpen;
        UserWork::killed(index, box, signal);
    }

private:
    void runInOtherProcess() {
        const AwaitedSignals signals;
        m_run.outputs().keepEndBack();
        ProcessSetting setting;
        setting.printed = Printed_e::Inherited;
        setting.showsWholeStacks = m_options.contract.showsStacks;
        setting.limitTime(m_options.contract.timeout);
        try {
            runInProcesses(signals, 1, setting, *this);
        } catch (const EndedBySignal&) {
            completeOpenTraces();
            throw;
        } catch (const std::system_error&) {  // its process was killed
            cutTraces(m_options.trace);
            throw;
        }
        completeOpenTraces();
    }

    // Call it when the process has ended.
    void completeOpenTraces() const {
        if (!m_areTracesOpen) return;
        cutTraces(m_options.trace);
        if (m_crash) addToTraces(m_options.trace, *m_crash);
    }

    const RunOptions& m_options;
    bool m_areTracesOpen = false;
    std::optional<Crash> m_crash;
    std::unique_ptr<LiveFile> m_results;
    WatchedRun m_run;
    ProblemOutputs m_problems;
    ExitStatus_e m_status = ExitStatus_e::ProcessEnded;
};

// The process of the run is in the background and cannot read from the terminal, so this process reads a typed macro.
void readTypedMacro(const RunOptions& options) {
    if (options.macroFile != "-" || isatty(STDIN_FILENO) == 0) return;
    const MemoryFile file(readStandardInput());
    lseek(file.descriptor(), 0, SEEK_SET);
    dup2(file.descriptor(), STDIN_FILENO);
}

}  // namespace

ExitStatus_e WatchedRun::judge(const ProcessBox& box, const ProcessOutcome& outcome) {
    const DebugCalls debugCalls(m_options.macroFile, m_options.debugOptions);
    if (outcome.end == End_e::TimedOut) {
        const LastWords lastWords(static_cast<int>(ExitStatus_e::CommandHung));
        const std::string debug = debugCalls.at({StopEvent_e::Hang});
        printFinding(lateFinding(box), debugLine(debug));
        tellStacks(outcome.stacks);
        tellProblem(lateProblem(box, outcome, m_options.macroFile), debug);
        return conclude(box, outcome, ExitStatus_e::CommandHung, "the command has not returned", debug);
    }
    if (outcome.end == End_e::Died) {
        const LastWords lastWords(static_cast<int>(ExitStatus_e::ProcessEnded));
        const std::string debug = debugCalls.at({StopEvent_e::Crash});
        tellDeath(box, outcome);
        tellLines("", debugLine(debug));
        tellProblem(deathProblem(box, outcome, m_options.macroFile), debug);
        return conclude(box, outcome, ExitStatus_e::ProcessEnded,
                        "the process ended: " + howItEnded(outcome.waitStatus), debug);
    }
    if (outcome.areNotesWhole) {
        m_outputs.tellEnd();
        return static_cast<ExitStatus_e>(outcome.status);
    }
    tell(m_options.macroFile,
         "error: a part of the run's report was lost: an add-on closed a file that it does not own");
    return conclude(box, outcome, ExitStatus_e::BadUsageOrInput, "a part of the run's report was lost");
}

ExitStatus_e WatchedRun::conclude(const ProcessBox& box, const ProcessOutcome& outcome, ExitStatus_e status,
                                  const std::string& error, const std::string& debug) {
    const bool isWritten = m_outputs.writeWhatIsLeft();
    if (m_options.json) {
        const MacroCommand command = {box.place.text(), box.addOnId.text(), box.work.text()};
        const bool isInCommand = box.isInAddOn && !command.addOnId.empty();
        const ResultDetails details = {{}, outcome.stacks, debug};
        if (isInCommand) m_outputs.tell(kResultNote, resultLine(command, {false, error}, box.sinceEntered(), details));
        m_outputs.tell(kEndNote, endLine(m_options.macroFile, status, details, error));
        m_outputs.tellEnd();
    }
    return isWritten ? status : ExitStatus_e::BadUsageOrInput;
}

void WatchedRun::tellProblem(Problem problem, const std::string& debug) {
    problem.debug = debug;
    m_outputs.tell(kProblemNote, packed(problem));
}

ProblemReport runReport(const std::vector<Problem>& problems, ExitStatus_e status) {
    ProblemReport report{"run", problems};
    report.exitStatus = static_cast<int>(status);
    report.hasRun = status != ExitStatus_e::BadUsageOrInput && status != ExitStatus_e::Stopped;
    return report;
}

ExitStatus_e runOneMacro(const RunOptions& options) {
    readTypedMacro(options);
    return OneRun(options).execute();
}

}  // namespace vexa::runner
