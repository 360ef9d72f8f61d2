// The facts file: it is completed, and written as a whole or not at all.

#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

#include "ProbedHost.h"

namespace vexa::probe {
namespace {

using ProbeFile = ProbedHost;

TEST_F(ProbeFile, KeepsTheAnswersThatItHas) {
    load();
    folder.write("facts.json", R"({"schema": 1, "facts": {"state.batch": {"question": "?", "answer": "long ago"}}})");
    EXPECT_EQ(write(), "");
    EXPECT_EQ(answer("state.batch"), "long ago");
    EXPECT_EQ(answer("state.journal"), false);
}

TEST_F(ProbeFile, IsCompletedByALaterCommand) {
    load();
    write();
    EXPECT_EQ(answer("record.whileRecording"), nullptr);
    host.setRecording(true);
    write();
    EXPECT_EQ(answer("record.whileRecording"), true);
    EXPECT_EQ(answer("state.recording"), false);  // from the first command
}

TEST_F(ProbeFile, LeavesNoOtherFileBehind) {
    load();
    write("RISKY = TRUE");
    host.unloadAddOns();
    EXPECT_EQ(folder.count(), 1);
}

TEST_F(ProbeFile, StaysAsItIsIfItCannotBeWrittenWhole) {
    load();
    write();
    const Json before = content();
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small = {1000, limit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const std::string error = write("RISKY = TRUE");
    setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_EQ(error, file() + ": cannot be written: File too large");
    EXPECT_EQ(content(), before);
    EXPECT_EQ(folder.count(), 1);
}

TEST_F(ProbeFile, KeepsItsPermissions) {
    load();
    write();
    chmod(file().c_str(), 0640);
    write();
    struct stat status {};
    ASSERT_EQ(stat(file().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640U);
}

TEST_F(ProbeFile, IsTheTargetOfASymbolicLink) {
    load();
    std::filesystem::create_symlink("facts.json", folder.path("link.json"));
    folder.write("facts.json", R"({"schema": 1, "facts": {}})");
    EXPECT_EQ(run("WRITE FILE = '" + folder.path("link.json") + "'"), "");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link.json")));
    EXPECT_EQ(answer("state.batch"), false);
}

TEST_F(ProbeFile, IsRefusedIfItHasNoFacts) {
    load();
    folder.write("facts.json", "nothing");
    EXPECT_EQ(write().substr(0, file().size() + 41), file() + ": cannot be read: it is no facts file: [j");
    std::ifstream old(file());
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(old), {}), "nothing");
}

TEST_F(ProbeFile, IsRefusedIfItHasAnotherSchema) {
    load();
    folder.write("facts.json", R"({"schema": 2, "facts": {}})");
    EXPECT_EQ(write(), file() + ": cannot be read: its schema is not 1");
}

TEST_F(ProbeFile, IsRefusedIfItIsAFolder) {
    load();
    EXPECT_EQ(run("WRITE FILE = '" + folder.path() + "'"), folder.path() + ": cannot be read: it is no regular file");
}

TEST_F(ProbeFile, IsRefusedIfItsFolderDoesNotExist) {
    load();
    const std::string nowhere = folder.path("nowhere/facts.json");
    EXPECT_EQ(run("WRITE FILE = '" + nowhere + "'"), nowhere + ": cannot be written: No such file or directory");
}

TEST_F(ProbeFile, IsRefusedIfItIsADevice) {
    load();
    EXPECT_EQ(run("WRITE FILE = '/dev/zero'"), "/dev/zero: cannot be read: it is no regular file");
}

}  // namespace
}  // namespace vexa::probe
