// Starts and watches processes for hours. The watching process must not hold more at the end than after the first
// tenth.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>

#include "load/Load.h"
#include "load/Soak.h"
#include "session/watch/Processes.h"

namespace vexa::runner {
namespace {

// Each process prints and tells something; one in twenty crashes.
class Work : public ProcessWorkInterface {
public:
    int run(std::size_t, ProcessBox&, NotesInterface& notes) override {
        if (crashes) raise(SIGKILL);
        std::puts("printed");
        notes.tell('n', "told");
        return 3;
    }
    NotesInterface* notesOf(std::size_t, std::function<KeptText()>) override { return nullptr; }
    void end(std::size_t, const ProcessBox&, const ProcessOutcome& outcome) override {
        const bool hasLeft = outcome.end == End_e::Left && outcome.status == 3 && outcome.areNotesWhole &&
                             outcome.out.text == "printed\n";
        isAsExpected = crashes ? outcome.end == End_e::Died : hasLeft;
    }
    void stopAsked(std::size_t, const ProcessBox&) override {}
    void killed(std::size_t, const ProcessBox&, int) override {}

    bool crashes = false;
    bool isAsExpected = false;
};

TEST(Soak, ProcessesWatched) {
    const AwaitedSignals signals;
    ProcessSetting setting;
    setting.leavesAtOnce = true;
    Work work;
    const auto watch = [&](long i) {
        work.crashes = i == 0;
        return runInProcesses(signals, 1, setting, work) == 1 && work.isAsExpected;
    };
    load::soak("watched processes, one in twenty killed", load::amount(1000, 1000000), watch, 0, 20);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD) << "a process is left";
}

}  // namespace
}  // namespace vexa::runner
