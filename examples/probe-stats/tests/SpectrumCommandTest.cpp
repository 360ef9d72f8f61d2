#include <algorithm>
#include <set>

#include "AddOnTest.h"

namespace probestats {
namespace {

// About a quarter of a second for each column.
constexpr const char* kSlow = "SPECTRUM SECTION = 32 STEP = 1 MAXFREQUENCY = 31 FREQUENCYSTEP = 0.0005";
// Minutes, were it not stopped.
constexpr const char* kEndless = "SPECTRUM SECTION = 500 STEP = 1 MAXFREQUENCY = 30 FREQUENCYSTEP = 0.0001 FILE = 'a'";
constexpr const char* kStopped = "Error: SPECTRUM was stopped by the user";
constexpr const char* kCheck = "VexaUtilStatusCheckPercentDone";

/// With a wave of 8 Hz at 64 samples a second loaded as column 1, and a constant as column 2.
class Spectrum : public AddOnTest {
protected:
    Spectrum() { loadWave(128); }

    void loadWave(int rowCount) {
        std::string rows = "u p\n";
        const char* const period[] = {"0", "0.7", "1", "0.7", "0", "-0.7", "-1", "-0.7"};
        for (int i = 0; i < rowCount; ++i) rows += std::string(period[i % 8]) + " 5\n";
        writeText("wave.txt", rows);
        run("LOAD FILE='wave.txt' HEADER=TRUE SAMPLERATE=64");
        host.clearCalls();
    }

    /// The calls made, less the queries of style values and those whose number depends on the machine's speed.
    std::vector<std::string> lastingCalls() const {
        std::vector<std::string> calls;
        for (const vexa::standin::Call& call : host.calls()) {
            if (call.function == kCheck || call.function == "VexaUtilStatusSetPercentDoneText") continue;
            if (call.function.rfind("VexaUtilArgList", 0) == 0 || call.function == "VexaUtilStyleGetLowLevelX")
                continue;
            if (call.function == "VexaUtilThreadMutexLock" || call.function == "VexaUtilThreadMutexUnlock") continue;
            calls.push_back(call.function.substr(std::string("VexaUtil").size()) + "(" + call.arguments + ")");
        }
        return calls;
    }

    std::ptrdiff_t callsOf(const std::string& function) const {
        const std::vector<std::string> functions = host.calledFunctions();
        return std::count(functions.begin(), functions.end(), function);
    }

    /// Whether all that was begun was ended.
    void expectBalance() const {
        for (const auto& [begin, end] : {std::pair{"VexaUtilLockStart", "VexaUtilLockFinish"},
                                         {"VexaUtilAuxDataBeginAssign", "VexaUtilAuxDataEndAssign"},
                                         {"VexaUtilThreadMutexAlloc", "VexaUtilThreadMutexDealloc"},
                                         {"VexaUtilThreadMutexLock", "VexaUtilThreadMutexUnlock"},
                                         {"VexaUtilStatusStartPercentDone", "VexaUtilStatusFinishPercentDone"}}) {
            EXPECT_EQ(callsOf(begin), callsOf(end)) << begin;
        }
        EXPECT_EQ(callsOf("VexaUtilDataSetSuspendMarking") % 2, 0);
    }

    /// Lets the user press stop when asked for the \p nth time, and keep it pressed.
    void pressStop(std::size_t nth) {
        for (std::size_t i = 0; i < 100; ++i) host.failCall(kCheck, nth + i);
    }
};

TEST_F(Spectrum, ShowsThePeaks) {
    EXPECT_EQ(run("SPECTRUM"),
              "wave.txt: 128 rows, from 1 to 128, 64 Hz\n"
              "sections: 1 of 128 rows; frequencies: 64, from 0.5 to 32 Hz\n"
              "column     frequency     amplitude\n"
              "     1             8      0.994975  u\n"
              "     2             -             -  p\n");
}

TEST_F(Spectrum, TakesItsOptions) {
    EXPECT_EQ(run("SPECTRUM COLUMNS = [1] SECTION = 64 STEP = 16 MINFREQUENCY = 4 MAXFREQUENCY = 30 "
                  "FREQUENCYSTEP = 2 PEAKS = 2"),
              "wave.txt: 128 rows, from 1 to 128, 64 Hz\n"
              "sections: 5 of 64 rows; frequencies: 14, from 4 to 30 Hz\n"
              "column     frequency     amplitude\n"
              "     1             8      0.994975  u\n"
              "     1            24    0.00502525  u\n");
}

TEST_F(Spectrum, LooksAtTheWindow) {
    run("WINDOW FIRST = 33 LAST = 112 STRIDE = 2");
    EXPECT_EQ(run("SPECTRUM COLUMNS = [1] SECTION = 32"),
              "wave.txt: 40 rows, from 33 to 112 in steps of 2, 32 Hz\n"
              "sections: 1 of 32 rows; frequencies: 16, from 1 to 16 Hz\n"
              "column     frequency     amplitude\n"
              "     1             8             1  u\n");
}

TEST_F(Spectrum, WritesTheTableToAFile) {
    const std::string shown = run("SPECTRUM");
    EXPECT_EQ(run("SPECTRUM FILE = 'spectrum.txt'"), "");
    EXPECT_EQ(readText("spectrum.txt"), shown);
}

TEST_F(Spectrum, RefusesWhatIsWrongWithItsOptions) {
    struct Refusal {
        const char* why;
        const char* command;
        const char* message;
    };
    const Refusal refusals[] = {
        {"unknown option", "SPECTRUM ROWS = 1",
         "Error: Unknown option of SPECTRUM: ROWS; known are COLUMNS, FILE, SECTION, STEP, MINFREQUENCY, "
         "MAXFREQUENCY, FREQUENCYSTEP, PEAKS"},
        {"column not loaded", "SPECTRUM COLUMNS = [3]", "Error: COLUMNS asks for 3, but loaded are [1-2]"},
        {"the data itself", "SPECTRUM FILE = 'wave.txt'", "Error: FILE is the file that the data came from: wave.txt"},
        {"no peaks", "SPECTRUM PEAKS = 0", "Error: PEAKS must be 1 or more"},
        {"section too short", "SPECTRUM SECTION = 7", "Error: SECTION must be 8 or more"},
        {"section too long", "SPECTRUM SECTION = 129", "Error: SECTION is 129, but the window has 128 rows"},
        {"no step", "SPECTRUM STEP = 0", "Error: STEP must be 1 or more"},
        {"minimum negative", "SPECTRUM MINFREQUENCY = -1", "Error: MINFREQUENCY must be 0 or more"},
        {"maximum too high", "SPECTRUM MAXFREQUENCY = 32.5",
         "Error: MAXFREQUENCY must be at most half the sample rate"},
        {"reversed", "SPECTRUM MINFREQUENCY = 9 MAXFREQUENCY = 8", "Error: MAXFREQUENCY must be MINFREQUENCY or more"},
        {"no frequency step", "SPECTRUM FREQUENCYSTEP = 0", "Error: FREQUENCYSTEP must be above 0"},
        {"too many frequencies", "SPECTRUM FREQUENCYSTEP = 1e-300",
         "Error: FREQUENCYSTEP is too small: it makes over 1000000 frequencies"},
        {"folder missing", "SPECTRUM FILE = 'missing/a.txt'",
         "Error: Cannot write missing/a.txt: No such file or directory"},
    };
    for (const Refusal& r : refusals) EXPECT_EQ(refusalOf(r.command), r.message) << r.why;
    expectBalance();
}

TEST_F(Spectrum, RefusesWindowsThatAreTooShort) {
    run("WINDOW LAST = 7");
    EXPECT_EQ(refusalOf("SPECTRUM"), "Error: SECTION is 8, but the window has 7 rows");
}

TEST_F(Spectrum, NeedsASampleRate) {
    run("LOAD FILE='wave.txt' HEADER=TRUE");
    EXPECT_EQ(refusalOf("SPECTRUM"), "Error: SPECTRUM needs a sample rate: LOAD with SAMPLERATE or TIMECOLUMN");
}

TEST_F(Spectrum, TakesTheStatusLineDownBeforeItPublishesUnderTheGuards) {
    run("SPECTRUM COLUMNS = [1]");
    EXPECT_EQ(lastingCalls(),
              (std::vector<std::string>{"LockStart(PROBESTATS)", "ThreadMutexAlloc()", "MacroIsBatchModeActive()",
                                        "StatusStartPercentDone(\"Spectrum of column 1 (u)\", 1, 1)",
                                        "StatusFinishPercentDone()", "ThreadMutexDealloc(mutex#1)",
                                        "DataSetSuspendMarking(1)", "AuxDataBeginAssign()", "MacroIsRecordingActive()",
                                        "StateIsProcessingJournal()", "StateIsProcessingLayout()",
                                        "MacroRecordExtCommand(\"PROBESTATS\", \"SPECTRUM COLUMNS = [1]\")",
                                        "AuxDataEndAssign()", "DataSetSuspendMarking(0)", "LockFinish(PROBESTATS)"}));
    expectBalance();
}

TEST_F(Spectrum, ShowsHowFarItHasCome) {
    run(kSlow);
    std::vector<std::string> texts;
    std::vector<int> percentages;
    for (const vexa::standin::Call& call : host.calls()) {
        if (call.function == "VexaUtilStatusSetPercentDoneText") texts.push_back(call.arguments);
        if (call.function == kCheck) percentages.push_back(std::stoi(call.arguments));
    }
    EXPECT_EQ(texts, std::vector<std::string>{"\"Spectrum of column 2 (p)\""});
    EXPECT_TRUE(std::is_sorted(percentages.begin(), percentages.end()));
    EXPECT_GT(std::set<int>(percentages.begin(), percentages.end()).size(), 3u);
    EXPECT_EQ(percentages.back(), 100);
}

TEST_F(Spectrum, LeavesAllButTheMutexToTheThreadOfTheHost) {
    run(kSlow);
    std::set<std::thread::id> threads;
    for (const vexa::standin::Call& call : host.calls()) {
        if (call.thread == std::this_thread::get_id()) continue;
        threads.insert(call.thread);
        EXPECT_EQ(call.function.rfind("VexaUtilThreadMutex", 0), 0u) << call.function;
    }
    EXPECT_EQ(threads.size(), 1u);
}

TEST_F(Spectrum, LeavesAllAsItWasWhenStoppedAtOnce) {
    const std::string before = run("SPECTRUM");
    const std::string recordedBefore = recorded();
    writeText("a", "older");
    host.failCall(kCheck, 1);
    EXPECT_EQ(refusalOf("SPECTRUM FILE = 'a'"), kStopped);
    EXPECT_EQ(readText("a"), "older");
    EXPECT_EQ(recorded(), recordedBefore);
    EXPECT_EQ(run("SPECTRUM"), before);
    expectBalance();
}

TEST_F(Spectrum, EndsSoonWhenStoppedOnTheWay) {
    loadWave(4000);
    pressStop(6);
    EXPECT_EQ(refusalOf(kEndless), kStopped);
    EXPECT_GE(callsOf(kCheck), 6);
    EXPECT_FALSE(std::filesystem::exists("a"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), std::filesystem::directory_iterator()), 2);
    EXPECT_EQ(callsOf("VexaUtilAuxDataBeginAssign"), 0);
    EXPECT_EQ(recorded().find("SPECTRUM"), std::string::npos);
    expectBalance();
}

TEST_F(Spectrum, ShowsNothingAndCannotBeStoppedInBatchMode) {
    const std::string before = run("SPECTRUM");
    host.setBatchMode(true);
    host.clearCalls();
    pressStop(1);
    EXPECT_EQ(run("SPECTRUM"), before);
    for (const std::string& function : host.calledFunctions()) {
        EXPECT_EQ(function.rfind("VexaUtilStatus", 0), std::string::npos) << function;
    }
    expectBalance();
}

TEST_F(Spectrum, ExplainsWhatTheHostThrewOnEitherThread) {
    const std::string before = run("SPECTRUM");
    for (const char* function :
         {"VexaUtilLockStart", "VexaUtilThreadMutexAlloc", "VexaUtilThreadMutexLock", "VexaUtilMacroIsBatchModeActive",
          "VexaUtilStatusStartPercentDone", "VexaUtilStatusCheckPercentDone", "VexaUtilDataSetSuspendMarking",
          "VexaUtilAuxDataBeginAssign"}) {
        SCOPED_TRACE(function);
        host.throwFromCall(function);
        EXPECT_EQ(refusalOf("SPECTRUM"), std::string(function) + " was told to throw");
        EXPECT_EQ(run("SPECTRUM"), before);
    }
}

TEST_F(Spectrum, LosesNoExceptionOfTheWorkerOrOfThoseThatWatchIt) {
    const std::string before = run("SPECTRUM");
    // The two threads lock three times at least: which one it meets depends on the machine's speed.
    for (std::size_t nth = 1; nth <= 3; ++nth) {
        SCOPED_TRACE(nth);
        host.throwFromCall("VexaUtilThreadMutexLock", nth);
        EXPECT_EQ(refusalOf("SPECTRUM"), "VexaUtilThreadMutexLock was told to throw");
        EXPECT_EQ(run("SPECTRUM"), before);
    }
}

TEST_F(Spectrum, FailsWhenTheHostHasNoMutex) {
    host.failCall("VexaUtilThreadMutexAlloc");
    EXPECT_EQ(refusalOf("SPECTRUM"), "std::bad_alloc");
}

}  // namespace
}  // namespace probestats
