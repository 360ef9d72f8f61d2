#include <sys/stat.h>

#include <csignal>

#include "RunnerTest.h"

namespace vexa::e2e {
namespace {

namespace fs = std::filesystem;

using OutputFile = RunnerTest;
using UnprivilegedOutputFile = UnprivilegedRunnerTest;

const std::string kRecordingHead = "# Macro commands as the add-ons recorded them. vexa-standin runs this file.\n";
const std::string kJournalHead = "# Data-set journal: commands, and the data that the add-ons keep with them.\n";

TEST_F(OutputFile, HoldsTheRecordedCommandsInOrder) {
    const ProgramResult result = runMacro("SECOND SAY b  c \nONE ECHO not recorded\nONE SAY a\n",
                                          {"--addon", ADDON_SECOND, "--record", "r.macro"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(read("r.macro"), kRecordingHead + "SECOND SAY b  c \nONE SAY a\n");
}

TEST_F(OutputFile, IsAMacroFileThatDoesAndRecordsTheSame) {
    const ProgramResult first = runMacro("# x\r\nONE SAY a \r\nSECOND   SAY  b\r\nONE SAY # c",
                                         {"--addon", ADDON_SECOND, "--record", "r1.macro"});
    const ProgramResult second =
        runProgram(runner({"run", "r1.macro", "--addon", ADDON_ONE, "--addon", ADDON_SECOND, "--record", "r2.macro"}));
    EXPECT_EQ(first.out, "a \n b\n# c\n");
    EXPECT_EQ(second.status, 0) << second.err;
    EXPECT_EQ(second.out, first.out);
    EXPECT_EQ(read("r2.macro"), read("r1.macro"));
}

TEST_F(OutputFile, WithoutCommandsIsWrittenAllTheSame) {
    EXPECT_EQ(runMacro("ONE ECHO a\n", {"--record", "r.macro"}).status, 0);
    EXPECT_EQ(read("r.macro"), kRecordingHead);
}

TEST_F(OutputFile, RecordingIsOffUnlessAskedFor) {
    EXPECT_EQ(runMacro("ONE RECORDING\n").out, "off\n");
    EXPECT_EQ(fileNames(), std::vector<std::string>{"m.macro"});
    EXPECT_EQ(runMacro("ONE RECORDING\n", {"--journal", "j.macro"}).out, "off\n");
    EXPECT_EQ(runMacro("ONE RECORDING\n", {"--record", "r.macro"}).out, "on\n");
}

TEST_F(OutputFile, AfterAFailureHoldsTheCommandsUpToThere) {
    write("r.macro", "old\n");
    const ProgramResult result = runMacro("ONE SAY a\nONE FAIL no\nONE SAY b\n", {"--record", "r.macro"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(read("r.macro"), kRecordingHead + "ONE SAY a\n");
}

TEST_F(OutputFile, HoldsTheJournalWithItsDataAsComments) {
    const ProgramResult result =
        runMacro("ONE JOURNAL a\nONE JOURNALDATA rows=1|columns=2|\nONE JOURNALDATA \n", {"--journal", "j.macro"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(read("j.macro"), kJournalHead +
                                   "ONE JOURNAL a\n"
                                   "ONE JOURNALDATA\n"
                                   "#   rows=1\n"
                                   "#   columns=2\n"
                                   "#   \n"
                                   "ONE JOURNALDATA\n"
                                   "#   \n");
}

TEST_F(OutputFile, HoldsTheJournalAsAMacroFile) {
    runMacro("ONE JOURNAL a\nONE JOURNALDATA b|ONE FAIL c\n", {"--journal", "j1.macro"});
    const ProgramResult second =
        runProgram(runner({"run", "j1.macro", "--addon", ADDON_ONE, "--verbose", "--journal", "j2.macro"}));
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(second.err,
              "j1.macro:2: ONE JOURNAL a\n"
              "j1.macro:3: ONE JOURNALDATA\n"
              "2 commands run, 0 failed; 2 journaled in j2.macro\n");
}

TEST_F(OutputFile, IsUntouchedWhenNothingRuns) {
    write("r.macro", "old\n");
    EXPECT_EQ(runMacro("TWO ECHO a\n", {"--record", "r.macro"}).status, 2);
    EXPECT_EQ(read("r.macro"), "old\n");
    EXPECT_EQ(fileNames().size(), 2U) << "a temporary file is left";
}

TEST_F(OutputFile, HoldsTheCommandsUpToACrash) {
    write("r.macro", "old\n");
    const ProgramResult result = runMacro("ONE SAY a\nONE KILL now\n", {"--record", "r.macro"});
    EXPECT_EQ(result.status, 5);
    EXPECT_EQ(result.out, "a\n");
    EXPECT_EQ(read("r.macro"), kRecordingHead + "ONE SAY a\n");
    EXPECT_EQ(fileNames().size(), 2U) << "a temporary file is left";
}

TEST_F(OutputFile, LeavesNoTemporaryFile) {
    EXPECT_EQ(runMacro("ONE FAIL a\n", {"--record", "r.macro", "--journal", "j.macro"}).status, 1);
    EXPECT_EQ(fileNames().size(), 3U);
}

TEST_F(OutputFile, ThatCannotHoldTextIsRefused) {
    fs::create_directory(folder() / "folder");
    fs::create_symlink("folder", folder() / "link");
    ASSERT_EQ(mkfifo((folder() / "pipe").c_str(), 0600), 0);
    struct Case {
        const char* target;
        const char* why;
    };
    const Case cases[] = {
        {"folder", "it is not a regular file"},
        {"link", "it is not a regular file"},
        {".", "it is not a regular file"},
        {"pipe", "no process reads it"},
    };
    for (const Case& c : cases) {
        for (const char* option : {"--record", "--journal"}) {
            SCOPED_TRACE(std::string(option) + ' ' + c.target);
            const ProgramResult result = runMacro("ONE ECHO a\n", {option, c.target});
            EXPECT_EQ(result.status, 2);
            EXPECT_EQ(result.out, "");
            EXPECT_EQ(result.err, std::string(c.target) + ": cannot be written: " + c.why + '\n');
        }
    }
}

// Without privileges: a runner that wrongly replaced the file would, as root, take the device from the machine.
TEST_F(UnprivilegedOutputFile, ThatIsADeviceIsWrittenTo) {
    write("m.macro", "ONE ECHO a\n");
    fs::create_symlink("/dev/full", folder() / "link");
    for (const char* option : {"--record", "--journal"}) {
        SCOPED_TRACE(option);
        const ProgramResult lost = runUnprivileged(macroRunner({option, "/dev/null"}));
        EXPECT_EQ(lost.status, 0) << lost.err;
        const ProgramResult full = runUnprivileged(macroRunner({option, "link"}));
        EXPECT_EQ(full.status, 2);
        EXPECT_EQ(full.out, "a\n");
        EXPECT_EQ(full.err, "link: cannot be written: No space left on device\n");
    }
}

TEST_F(OutputFile, InAMissingPlaceIsRefused) {
    fs::create_symlink("loop", folder() / "loop");
    struct Case {
        const char* target;
        const char* why;
    };
    const Case cases[] = {
        {"gone/r.macro", "its folder does not exist"},
        {"gone/", "its folder does not exist"},
        {"", "No such file or directory"},
        {"m.macro/r.macro", "Not a directory"},
        {"loop", "Too many levels of symbolic links"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.target);
        const ProgramResult result = runMacro("ONE ECHO a\n", {"--record", c.target});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, std::string(c.target) + ": cannot be written: " + c.why + '\n');
    }
}

TEST_F(OutputFile, BehindASymbolicLinkIsReplacedThere) {
    fs::create_directory(folder() / "elsewhere");
    write("elsewhere/old.macro", "old\n");
    fs::create_symlink("elsewhere/old.macro", folder() / "link.macro");
    fs::create_symlink("elsewhere/new.macro", folder() / "dangling.macro");
    EXPECT_EQ(runMacro("ONE SAY a\n", {"--record", "link.macro", "--journal", "dangling.macro"}).status, 0);
    EXPECT_TRUE(fs::is_symlink(folder() / "link.macro"));
    EXPECT_TRUE(fs::is_symlink(folder() / "dangling.macro"));
    EXPECT_EQ(read("elsewhere/old.macro"), kRecordingHead + "ONE SAY a\n");
    EXPECT_EQ(read("elsewhere/new.macro"), kJournalHead);
}

TEST_F(OutputFile, KeepsThePermissionsOfTheFileItReplaces) {
    write("r.macro", "old\n");
    for (const unsigned mode : {0600U, 0664U, 0755U}) {
        fs::permissions(folder() / "r.macro", fs::perms(mode));
        EXPECT_EQ(runMacro("ONE SAY a\n", {"--record", "r.macro"}).status, 0);
        EXPECT_EQ(fs::status(folder() / "r.macro").permissions(), fs::perms(mode));
    }
}

TEST_F(OutputFile, ThatIsNewHasThePermissionsThatTheUserGivesFiles) {
    write("m.macro", "ONE SAY a\n");
    const std::string command = "umask 027; " VEXA_STANDIN " run m.macro --addon " ADDON_ONE " --record r.macro";
    EXPECT_EQ(runProgram({{"sh", "-c", command}, folder(), "", false}).status, 0);
    EXPECT_EQ(fs::status(folder() / "r.macro").permissions(), fs::perms(0640));
}

TEST_F(OutputFile, OnAFullDiskIsAnErrorAndLeavesTheOldOne) {
    // A limit on the size of files stands for the full disk.
    write("r.macro", "old\n");
    write("m.macro", "ONE SAY " + std::string(4000, 'x') + '\n');
    const std::string command =
        "trap '' XFSZ; ulimit -f 1; " VEXA_STANDIN " run m.macro --addon " ADDON_ONE " --record r.macro > /dev/null";
    const ProgramResult result = runProgram({{"sh", "-c", command}, folder(), "", false});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "r.macro: cannot be written: File too large\n");
    EXPECT_EQ(read("r.macro"), "old\n");
    EXPECT_EQ(fileNames().size(), 2U) << "a temporary file is left";
}

TEST_F(UnprivilegedOutputFile, InAFolderWithoutPermissionIsRefusedBeforeAnythingRuns) {
    write("m.macro", "ONE ECHO a\n");
    fs::permissions(folder(), fs::perms(0555));
    const ProgramResult result = runUnprivileged(macroRunner({"--record", "r.macro"}));
    fs::permissions(folder(), fs::perms(0755));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "r.macro: cannot be written: cannot create a file in its folder: Permission denied\n");
}

TEST_F(UnprivilegedOutputFile, WithoutWritePermissionIsRefused) {
    write("m.macro", "ONE ECHO a\n");
    write("r.macro", "old\n");
    fs::permissions(folder() / "r.macro", fs::perms(0444));
    fs::permissions(folder(), fs::perms(0777));
    const ProgramResult result = runUnprivileged(macroRunner({"--record", "r.macro"}));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "r.macro: cannot be written: Permission denied\n");
    EXPECT_EQ(read("r.macro"), "old\n");
}

}  // namespace
}  // namespace vexa::e2e
