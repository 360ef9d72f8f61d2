// Sends signals that end a program, at random moments of a run.

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <random>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

class Signal : public RunnerTest {
protected:
    // Writes a macro that takes some time and records commands all the time.
    Signal() {
        std::string macro;
        for (int i = 0; i != 40; ++i) macro += "ONE SAY line " + std::to_string(i) + "\nONE SLEEP 1\n";
        write("m.macro", macro);
    }

    // Starts `vexa-standin ARGUMENTS` with its temporary files in the folder, and sends it a signal after a while.
    void interrupt(const std::vector<std::string>& arguments, int number, useconds_t after) const {
        const pid_t process = fork();
        if (process == 0) start(arguments);
        usleep(after);
        kill(process, number);
        int status = 0;
        waitpid(process, &status, 0);
    }

    std::vector<std::string> hiddenFiles() const {
        std::vector<std::string> names = fileNames();
        const auto isKnown = [](const std::string& name) {
            return name == "m.macro" || name == "r.macro" || name == "j.macro" || name == "r.jsonl";
        };
        names.erase(std::remove_if(names.begin(), names.end(), isKnown), names.end());
        return names;
    }

private:
    [[noreturn]] void start(const std::vector<std::string>& arguments) const {
        std::vector<char*> words = {const_cast<char*>(VEXA_STANDIN)};
        for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
        words.push_back(nullptr);
        for (const int number : kSignals) signal(number, SIG_DFL);
        const bool isThere = chdir(folder().c_str()) == 0 && setenv("TMPDIR", folder().c_str(), 1) == 0 &&
                             std::freopen("/dev/null", "w", stdout) != nullptr &&
                             std::freopen("/dev/null", "w", stderr) != nullptr;
        if (isThere) execv(VEXA_STANDIN, words.data());
        _exit(EXIT_FAILURE);
    }
};

int timesOf(int quick) {
    const char* const load = std::getenv("VEXA_LOAD");
    return load != nullptr && std::string(load) == "long" ? 1000 : quick;
}

bool isWholeOrOld(const std::string& recording) {
    return recording == "old\n" || recording.find("\nONE SAY line 0\n") != std::string::npos ||
           recording.rfind("# Macro commands", 0) == 0;
}

TEST_F(Signal, LeavesTheRecordingWholeOrAsItWasAndNothingElse) {
    std::mt19937 random(1);
    std::uniform_int_distribution<useconds_t> moments(0, 120000);
    for (int i = 0; i != timesOf(30); ++i) {
        write("r.macro", "old\n");
        interrupt({"run", "m.macro", "--addon", ADDON_ONE, "--record", "r.macro", "--journal", "j.macro"},
                  kSignals[i % 3], moments(random));
        ASSERT_TRUE(isWholeOrOld(read("r.macro"))) << read("r.macro");
        ASSERT_EQ(read("r.macro").back(), '\n');
        ASSERT_EQ(hiddenFiles(), std::vector<std::string>());
    }
}

TEST_F(Signal, LeavesNoScratchFolderOfACheck) {
    std::mt19937 random(1);
    std::uniform_int_distribution<useconds_t> moments(0, 200000);
    for (int i = 0; i != timesOf(9); ++i) {
        interrupt({"check", ADDON_ONE, "--macro", "m.macro", "--only", "mutated-text", "--time", "1"}, kSignals[i % 3],
                  moments(random));
        ASSERT_EQ(hiddenFiles(), std::vector<std::string>());
    }
}

}  // namespace
}  // namespace vexa::e2e
