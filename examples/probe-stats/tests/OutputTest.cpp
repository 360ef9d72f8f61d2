#include "Output.h"

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>

#include "AddOnTest.h"
#include "ProbeError.h"

namespace probestats {
namespace {

/// While it lives, files cannot grow, as on a full disk.
class FullDisk {
public:
    FullDisk() : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit none{0, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &none);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    void (*m_handler)(int);
    rlimit m_before{};
};

class WriteToFile : public FolderTest {
protected:
    static std::string refusalOf(const std::string& fileName) {
        try {
            writeToFile(fileName, "text");
        } catch (const ProbeError& refusal) {
            return refusal.what();
        }
        return "accepted";
    }
    static std::ptrdiff_t filesHere() {
        return std::distance(std::filesystem::directory_iterator("."), std::filesystem::directory_iterator());
    }
};

TEST_F(WriteToFile, LeavesTheFileAndNothingElse) {
    writeToFile("a.txt", "one\n");
    EXPECT_EQ(readText("a.txt"), "one\n");
    EXPECT_EQ(filesHere(), 1);
}

TEST_F(WriteToFile, ReplacesWhatWasThere) {
    writeText("a.txt", "a longer text");
    writeToFile("a.txt", "one\n");
    EXPECT_EQ(readText("a.txt"), "one\n");
}

TEST_F(WriteToFile, RefusesAFolderThatIsMissing) {
    EXPECT_EQ(refusalOf("missing/a.txt"), "Cannot write missing/a.txt: No such file or directory");
}

TEST_F(WriteToFile, RefusesToReplaceWhatIsNoRegularFile) {
    std::filesystem::create_directory("folder");
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    EXPECT_EQ(refusalOf("folder"), "Cannot write folder: it is no regular file");
    EXPECT_EQ(refusalOf("pipe"), "Cannot write pipe: it is no regular file");
    EXPECT_EQ(filesHere(), 2);
}

TEST_F(WriteToFile, LeavesAllAsItWasWhenTheDiskIsFull) {
    writeText("a.txt", "older");
    std::string refusal;
    {
        const FullDisk full;
        refusal = refusalOf("a.txt");
    }
    EXPECT_EQ(refusal, "Cannot write a.txt: File too large");
    EXPECT_EQ(readText("a.txt"), "older");
    EXPECT_EQ(filesHere(), 1);
}

TEST(WriteToScreen, WritesAtOnce) {
    testing::internal::CaptureStdout();
    writeToScreen("one\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "one\n");
}

TEST(WriteToScreen, SaysWhenItCannot) {
    testing::internal::CaptureStdout();
    std::string refusal;
    try {
        const FullDisk full;
        writeToScreen("one\n");
    } catch (const ProbeError& failure) {
        refusal = failure.what();
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(refusal, "Cannot write the standard output: File too large");
}

}  // namespace
}  // namespace probestats
