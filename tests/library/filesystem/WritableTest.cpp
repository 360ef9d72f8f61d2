// Tests isFileOrDirWritable(). Root may write every file, so a child process without root's rights checks permissions.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <thread>

#include "support/TemporaryFolder.h"
#include "vexautilutil/FileSystem.h"

namespace vexa::filesystem {
namespace {

constexpr uid_t kNobody = 65534;
constexpr int kNoRights = 77;

// Runs an action in a child process, as an ordinary user if this process is root. Returns the exit status.
int inChild(bool dropRights, const std::function<int()>& action) {
    const pid_t child = fork();
    if (child == 0) {
        if (dropRights && geteuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0)) _exit(kNoRights);
        _exit(action());
    }
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool isWritableForOthers(const std::string& path) {
    const int status = inChild(true, [&] { return isFileOrDirWritable(path) ? 1 : 0; });
    if (status != 0 && status != 1) throw std::runtime_error("the rights could not be dropped");
    return status == 1;
}

class WritableTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(chmod(m_folder.path().c_str(), 0777), 0); }

    static std::string contents(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    void link(const std::string& target, const std::string& name) const {
        ASSERT_EQ(symlink(target.c_str(), m_folder.path(name).c_str()), 0);
    }

    const tests::TemporaryFolder m_folder;
};

TEST_F(WritableTest, LeavesNoFileWhereThereWasNone) {
    EXPECT_TRUE(isFileOrDirWritable(m_folder.path("new.txt")));
    EXPECT_EQ(m_folder.count(), 0);
}

TEST_F(WritableTest, LeavesNoProbeInADirectory) {
    EXPECT_TRUE(isFileOrDirWritable(m_folder.path()));
    EXPECT_EQ(m_folder.count(), 0);
}

TEST_F(WritableTest, LeavesNothingOpen) {
    const auto openFiles = [] {
        const std::filesystem::directory_iterator entries("/proc/self/fd");
        return std::distance(begin(entries), end(entries));
    };
    const auto before = openFiles();
    EXPECT_TRUE(isFileOrDirWritable(m_folder.path()));
    EXPECT_TRUE(isFileOrDirWritable(m_folder.write("file.txt", "contents")));
    EXPECT_EQ(openFiles(), before);
}

TEST_F(WritableTest, LeavesAnExistingFileAsItIs) {
    const std::string path = m_folder.write("file.txt", "contents");
    EXPECT_TRUE(isFileOrDirWritable(path));
    EXPECT_EQ(contents(path), "contents");
}

TEST_F(WritableTest, RefusesAReadOnlyFileAndLeavesIt) {
    const std::string path = m_folder.write("file.txt", "contents");
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    EXPECT_FALSE(isWritableForOthers(path));
    EXPECT_EQ(contents(path), "contents");
}

TEST_F(WritableTest, RefusesAReadOnlyDirectory) {
    ASSERT_EQ(chmod(m_folder.path().c_str(), 0555), 0);
    EXPECT_FALSE(isWritableForOthers(m_folder.path()));
    EXPECT_FALSE(isWritableForOthers(m_folder.path("new.txt")));
    EXPECT_EQ(m_folder.count(), 0);
}

TEST_F(WritableTest, RefusesWhatLiesInAnUnreadableDirectory) {
    const std::string path = m_folder.write("file.txt", "contents");
    ASSERT_EQ(chmod(m_folder.path().c_str(), 0), 0);
    EXPECT_FALSE(isWritableForOthers(path));
    ASSERT_EQ(chmod(m_folder.path().c_str(), 0777), 0);
    EXPECT_EQ(contents(path), "contents");
}

TEST_F(WritableTest, RefusesAPathWithoutItsParent) {
    EXPECT_FALSE(isFileOrDirWritable(m_folder.path("no/file.txt")));
    EXPECT_EQ(m_folder.count(), 0);
}

TEST_F(WritableTest, RefusesAnOverLongName) {
    EXPECT_FALSE(isFileOrDirWritable(m_folder.path(std::string(300, 'n'))));
    EXPECT_EQ(m_folder.count(), 0);
}

TEST_F(WritableTest, RefusesAnEmptyPath) { EXPECT_FALSE(isFileOrDirWritable("")); }

TEST_F(WritableTest, TakesADeviceThatCanBeOpened) {
    EXPECT_TRUE(isFileOrDirWritable("/dev/full")) << "opening it succeeds, and nothing is written";
}

TEST_F(WritableTest, ProbesNamesThatAreNoUtf8) {
    EXPECT_TRUE(isFileOrDirWritable(m_folder.path("\xff\x80")));
    EXPECT_EQ(m_folder.count(), 0);
}

TEST_F(WritableTest, FollowsALinkToAFile) {
    const std::string path = m_folder.write("file.txt", "contents");
    link("file.txt", "link");
    EXPECT_TRUE(isFileOrDirWritable(m_folder.path("link")));
    EXPECT_EQ(contents(path), "contents");
    EXPECT_EQ(fileStatus(m_folder.path("link"), false).type(), boost::filesystem::symlink_file);
}

TEST_F(WritableTest, RemovesADanglingLinkAndLeavesWhatItLedTo) {
    link("target.txt", "dangling");
    EXPECT_TRUE(isFileOrDirWritable(m_folder.path("dangling")));
    EXPECT_EQ(fileStatus(m_folder.path("dangling"), false).type(), boost::filesystem::file_not_found);
    EXPECT_TRUE(fileExists(m_folder.path("target.txt")));
}

TEST_F(WritableTest, RemovesALinkLoop) {
    link("loop", "loop");
    EXPECT_FALSE(isFileOrDirWritable(m_folder.path("loop")));
    EXPECT_EQ(m_folder.count(), 0);
}

TEST_F(WritableTest, TakesAPercentSignInADirectoryForADigit) {
    boost::filesystem::create_directory(m_folder.path("100%"));
    EXPECT_FALSE(isFileOrDirWritable(m_folder.path("100%")));
    EXPECT_EQ(m_folder.count(), 1);
}

TEST_F(WritableTest, LeavesNoProbeWhenTwoProcessesProbeTheSameDirectory) {
    const auto probe = [this] {
        int failed = 0;
        for (int i = 0; i < 500; ++i) failed += isFileOrDirWritable(m_folder.path()) ? 0 : 1;
        return failed == 0 ? 0 : 1;
    };
    int other = -1;
    std::thread waiting([&] { other = inChild(false, probe); });
    EXPECT_EQ(probe(), 0);
    waiting.join();
    EXPECT_EQ(other, 0);
    EXPECT_EQ(m_folder.count(), 0);
}

}  // namespace
}  // namespace vexa::filesystem
