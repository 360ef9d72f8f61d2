#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

class Diff : public RunnerTest {
protected:
    // Writes NAME.ev, the events of a run of `macro`, and NAME.txt, the text.
    void trace(const std::string& macro, const std::string& name, const std::string& file = "m.macro") const {
        write(file, macro);
        runProgram(runner({"run", file, "--addon", ADDON_ONE, "--keep-going", "--record", "r.macro", "--trace",
                           name + ".ev", "--trace-text", name + ".txt"}));
    }
    ProgramResult diff(const std::string& before, const std::string& now) const {
        return runProgram(runner({"diff", before, now}));
    }
};

TEST_F(Diff, OfEqualRunsIsEmpty) {
    std::filesystem::create_directory(folder() / "elsewhere");
    trace("ONE SAY a\nONE FAIL b\n", "a");
    trace("# moved\nONE SAY a\nONE FAIL b\n", "b", "elsewhere/n.macro");
    for (const char* const before : {"a.ev", "a.txt"}) {
        for (const char* const now : {"b.ev", "b.txt"}) {
            const ProgramResult result = diff(before, now);
            EXPECT_EQ(result.status, 0) << before << ' ' << now;
            EXPECT_EQ(result.out + result.err, "") << before << ' ' << now;
        }
    }
}

TEST_F(Diff, ShowsTheFirstDifferenceAndCountsAll) {
    trace("ONE SAY a\nONE ECHO x\nONE FAIL b\n", "a");
    trace("ONE SAY a\nONE FAIL b\nONE SAY c\n", "b");
    for (const char* const kind : {".ev", ".txt"}) {
        const ProgramResult result = diff(std::string("a") + kind, std::string("b") + kind);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.out,
                  "first difference: ONE ECHO x (m.macro:2), only in the first trace\n"
                  "  - => accepted\n"
                  "\n"
                  "ADDED  GONE  REORDERED  COMMAND\n"
                  "0      1     0          ONE ECHO x, only in the first trace\n"
                  "3      0     0          ONE SAY c, only in the second trace\n")
            << kind;
    }
}

TEST_F(Diff, TellsReorderedCallsFromNewOnes) {
    const std::string head = "# thread, then commands, and their calls of the host with arguments and results\n";
    const std::string begin = "1  m.macro:1: ONE A\n1    VexaUtilStateIsProcessingLayout() = 0\n";
    const std::string end = "1    VexaUtilLockFinish(ONE)\n1    => accepted\n";
    write("a", head + begin + "1    VexaUtilMacroIsRecordingActive() = 0\n1    VexaUtilLockStart(ONE)\n" + end);
    write("b", head + begin +
                   "1    VexaUtilLockStart(ONE)\n1    VexaUtilMacroIsRecordingActive() = 0\n"
                   "1    VexaUtilMacroIsBatchModeActive() = 0\n" +
                   end);
    const ProgramResult result = diff("a", "b");
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.out.find("    VexaUtilStateIsProcessingLayout() = 0\n  "), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("\n1      0     1          ONE A\n"), std::string::npos) << result.out;
}

TEST_F(Diff, SeesAnotherEndOfTheRun) {
    trace("ONE KILL\n", "a");
    trace("ONE KILL\n", "b");
    EXPECT_EQ(diff("a.txt", "b.txt").status, 0);
    write("b.txt", read("b.txt") + "=> exit status 0: all went well\n");
    const ProgramResult result = diff("a.txt", "b.txt");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "first difference: the end of the run\n  - \n  + exit status 0: all went well\n");
}

TEST_F(Diff, OfAnotherFileIsRefused) {
    trace("ONE SAY a\n", "a");
    write("notes", "hello\n");
    EXPECT_EQ(diff("a.txt", "notes").status, 2);
    EXPECT_EQ(diff("notes", "a.txt").err, "notes: this is not a trace of 'vexa-standin run --trace'\n");
    EXPECT_EQ(diff("gone", "a.txt").err, "gone: cannot be read: No such file or directory\n");
    EXPECT_EQ(runProgram(runner({"diff", "a.txt"})).status, 2);
}

}  // namespace
}  // namespace vexa::e2e
