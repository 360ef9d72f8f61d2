#include <chrono>
#include <fstream>
#include <thread>

#include "TerminalTest.h"

namespace vexa::e2e {
namespace {

namespace fs = std::filesystem;

// `vexa-standin test --watch` with the macros a and b, which pass, and a copy of the add-on.
class Watch : public TerminalTest {
protected:
    Watch() {
        fs::create_directory(folder() / "t");
        addMacro("a");
        addMacro("b");
        fs::copy_file(ADDON_ONE, folder() / "a.so");
    }

    void addMacro(const std::string& name) const {
        write("t/" + name + ".expected", "> ONE ECHO " + name + "\n  " + name + '\n');
        write("t/" + name + ".macro", "ONE ECHO " + name + '\n');
    }
    Program watcher(const std::vector<std::string>& options = {}) const {
        Program program = runner({"test", "t", "--addon", "a.so", "--watch"});
        program.arguments.insert(program.arguments.end(), options.begin(), options.end());
        return program;
    }
    PtyProgram started(const std::vector<std::string>& options = {}) const {
        return PtyProgram(watcher(options), kColumns, plainTerminal());
    }
    static bool waits(PtyProgram& program) { return program.waitFor("waiting for changes; Ctrl-C ends\r\n"); }
    static int finish(PtyProgram& program) {
        program.type("\x03");
        return program.finish();
    }
};

TEST_F(Watch, TestsOnlyAMacroWhoseFilesHaveChanged) {
    PtyProgram program = started();
    ASSERT_TRUE(program.waitFor("2 run; 2 of 2 macros pass\r\n")) << program.output();
    ASSERT_TRUE(waits(program));
    write("t/a.expected", "> ONE ECHO a\n  other\n");
    ASSERT_TRUE(program.waitFor("changed: t/a.expected\r\nfailed t/a.macro: its results differ")) << program.output();
    ASSERT_TRUE(program.waitFor("+   a\r\n1 run; 1 of 2 macros pass\r\n")) << program.output();
    ASSERT_TRUE(waits(program));
    write("t/b.macro", "ONE ECHO b\n# a comment\n");
    ASSERT_TRUE(program.waitFor("changed: t/b.macro\r\nstill failing: t/a.macro\r\n1 run; 1 of 2 macros pass\r\n"))
        << program.output();
    ASSERT_TRUE(waits(program));
    EXPECT_EQ(finish(program), 0) << program.output();
}

TEST_F(Watch, TestsAllMacrosWhenAnAddOnIsReplaced) {
    PtyProgram program = started();
    ASSERT_TRUE(waits(program)) << program.output();
    fs::copy_file(ADDON_ONE_AGAIN, folder() / "a.so.new");
    fs::rename(folder() / "a.so.new", folder() / "a.so");
    EXPECT_TRUE(program.waitFor("changed: a.so\r\n2 run; 2 of 2 macros pass\r\n")) << program.output();
    EXPECT_EQ(finish(program), 0) << program.output();
}

TEST_F(Watch, TestsAllMacrosWhenASettingChanges) {
    write("s.json", "{}");
    PtyProgram program = started({"--style", "s.json"});
    ASSERT_TRUE(waits(program)) << program.output();
    write("s.json", R"({"FRAME": 1})");
    EXPECT_TRUE(program.waitFor("changed: s.json\r\n2 run; 2 of 2 macros pass\r\n")) << program.output();
    write("vexa-standin.toml", "strict = 1\n");
    EXPECT_TRUE(program.waitFor("expected true or false")) << program.output();
    ASSERT_TRUE(waits(program)) << program.output();
    write("vexa-standin.toml", "strict = true\n");
    EXPECT_TRUE(program.waitFor("vexa-standin.toml\r\n2 run; 2 of 2 macros pass\r\n")) << program.output();
    EXPECT_EQ(finish(program), 0) << program.output();
}

TEST_F(Watch, SeesAFileThatAnEditorReplaces) {
    PtyProgram program = started();
    ASSERT_TRUE(waits(program)) << program.output();
    write("t/4913", "> ONE ECHO a\n  other\n");
    fs::rename(folder() / "t/4913", folder() / "t/a.expected");
    EXPECT_TRUE(program.waitFor("changed: t/a.expected\r\nfailed t/a.macro")) << program.output();
    EXPECT_EQ(finish(program), 0) << program.output();
}

TEST_F(Watch, WaitsUntilAnAddOnIsWritten) {
    PtyProgram program = started();
    ASSERT_TRUE(waits(program)) << program.output();
    std::ifstream whole(ADDON_ONE_AGAIN, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(whole), {}};
    fs::remove(folder() / "a.so");
    ASSERT_TRUE(program.waitFor("waiting for a.so\r\n")) << program.output();
    {
        std::ofstream linker(folder() / "a.so", std::ios::binary);
        linker << bytes.substr(0, bytes.size() / 2) << std::flush;
        ASSERT_TRUE(program.waitFor("waiting until a.so is written\r\n")) << program.output();
        linker << bytes.substr(bytes.size() / 2);
    }
    EXPECT_TRUE(program.waitFor("2 run; 2 of 2 macros pass\r\n")) << program.output();
    EXPECT_EQ(program.output().find("failed"), std::string::npos) << program.output();
    EXPECT_EQ(finish(program), 0) << program.output();
}

TEST_F(Watch, PrintsNoFailureOfAMacroWhoseFilesChangeMeanwhile) {
    write("t/a.macro", "PROGRESS MAKE t/a.calls\nPROGRESS SAY a\n");
    Program testing = runner({"test", "t/a.macro", "--addon", ADDON_PROGRESS, "--watch"});
    PtyProgram program(testing, kColumns, plainTerminal());
    ASSERT_TRUE(program.waitFor("changed: t/a.calls\r\n")) << program.output();
    EXPECT_EQ(program.output().find("failed"), std::string::npos) << program.output();
    EXPECT_EQ(finish(program), 0) << program.output();
}

TEST_F(Watch, SeesNewAndRemovedMacros) {
    PtyProgram program = started();
    ASSERT_TRUE(waits(program)) << program.output();
    addMacro("c");
    EXPECT_TRUE(program.waitFor("1 run; 3 of 3 macros pass\r\n")) << program.output();
    ASSERT_TRUE(waits(program));
    fs::remove(folder() / "t/c.macro");
    fs::remove(folder() / "t/c.expected");
    EXPECT_TRUE(program.waitFor("changed: t/c.expected, t/c.macro\r\n0 run; 2 of 2 macros pass\r\n"))
        << program.output();
    EXPECT_EQ(finish(program), 0) << program.output();
}

TEST_F(Watch, SeesAFolderThatIsMadeAgain) {
    PtyProgram program(runner({"test", "t", "--addon", "build/a.so", "--watch"}), kColumns, plainTerminal());
    ASSERT_TRUE(program.waitFor("waiting for build/a.so\r\n")) << program.output();
    for (int i = 0; i != 2; ++i) {
        fs::create_directory(folder() / "build");
        fs::copy_file(ADDON_ONE, folder() / "build/a.so");
        EXPECT_TRUE(program.waitFor("2 run; 2 of 2 macros pass\r\n")) << program.output();
        ASSERT_TRUE(waits(program)) << program.output();
        fs::remove_all(folder() / "build");
        EXPECT_TRUE(program.waitFor("waiting for build/a.so\r\n")) << program.output();
    }
    EXPECT_EQ(finish(program), 0) << program.output();
}

TEST_F(Watch, WaitsForAnAddOnThatIsALinkToItself) {
    fs::create_directory_symlink("b.so", folder() / "b.so");
    PtyProgram program(runner({"test", "t", "--addon", "b.so", "--watch"}), kColumns, plainTerminal());
    ASSERT_TRUE(program.waitFor("waiting for b.so\r\n")) << program.output();
    fs::remove(folder() / "b.so");
    fs::copy_file(ADDON_ONE, folder() / "b.so");
    EXPECT_TRUE(program.waitFor("2 run; 2 of 2 macros pass\r\n")) << program.output();
    EXPECT_EQ(finish(program), 0) << program.output();
}

TEST_F(Watch, EndsOnCtrlCInATest) {
    write("t/b.macro", "PROGRESS MAKE ready;WAITFOR never\n");
    PtyProgram program(runner({"test", "t/b.macro", "--addon", ADDON_PROGRESS, "--watch"}), kColumns, plainTerminal());
    ASSERT_TRUE(waitForFile("ready")) << program.output();
    EXPECT_EQ(finish(program), 0) << program.output();
    EXPECT_EQ(program.output().find("waiting for changes"), std::string::npos) << program.output();
}

TEST_F(Watch, SleepsUntilSomethingChanges) {
    PtyProgram program = started();
    ASSERT_TRUE(waits(program)) << program.output();
    const std::chrono::nanoseconds before = program.processorTime();
    EXPECT_GT(before.count(), 0);
    std::this_thread::sleep_for(std::chrono::seconds(1));
    EXPECT_LT(program.processorTime() - before, std::chrono::milliseconds(200));
    EXPECT_EQ(finish(program), 0) << program.output();
}

TEST_F(Watch, IsRefusedWhereFoldersCannotBeWatched) {
    Program program = watcher();
    program.arguments.insert(program.arguments.begin(), {REFUSING_SYSTEM, "inotify", "--"});
    const ProgramResult result = runProgram(program);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "vexa-standin: error: the system does not watch folders: Function not implemented\n");
}

TEST_F(Watch, IsRefusedWithWhatHappensOnlyOnce) {
    for (const std::vector<std::string>& option : std::vector<std::vector<std::string>>{
             {"--accept"}, {"--junit", "j.xml"}, {"--in-process"}, {"--style", "-"}}) {
        const ProgramResult result = runProgram(watcher(option));
        EXPECT_EQ(result.status, 2) << option.front();
        EXPECT_NE(result.err.find("--watch "), std::string::npos) << result.err;
    }
}

TEST_F(Watch, EndsAtOnceWithoutMacros) {
    const ProgramResult result = runProgram(runner({"test", "none", "--addon", "a.so", "--watch"}));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "none: no such file; expected a folder, or a macro NAME.macro\n");
}

}  // namespace
}  // namespace vexa::e2e
