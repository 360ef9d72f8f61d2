#include "system/files/MappedTail.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <iterator>

#include "support/TemporaryFolder.h"
#include "system/Descriptor.h"
#include "system/processes/SharedMemory.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kMost = MappedTail::kMost;

std::string fileContent(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class MappedTailTest : public ::testing::Test {
protected:
    Descriptor opened() const { return Descriptor(open(path().c_str(), O_CREAT | O_TRUNC | O_RDWR | O_CLOEXEC, 0600)); }
    std::string path() const { return m_folder.path("file"); }
    std::string content() const { return fileContent(path()); }
    std::string text() const { return content().substr(0, textLengthOf(content())); }

    tests::TemporaryFolder m_folder;
};

// Lets the files of this process have at most so many bytes, as a full disk would.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t size) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{size, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_before{};
    void (*m_handler)(int);
};

TEST_F(MappedTailTest, HasEachTextInTheFileAtOnce) {
    const Descriptor file = opened();
    MappedTail tail(file.get());
    EXPECT_EQ(tail.append("one\n"), 4U);
    EXPECT_EQ(text(), "one\n");
    EXPECT_EQ(tail.append("two\n"), 4U);
    EXPECT_EQ(text(), "one\ntwo\n");
}

TEST_F(MappedTailTest, CutGivesTheFileTheLengthOfItsText) {
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, kMost - 1, kMost, kMost + 1, 3 * kMost + 5}) {
        const Descriptor file = opened();
        MappedTail tail(file.get());
        std::string all(size, 'x');
        for (std::size_t i = 0; i < size; i += 7) all[i] = static_cast<char>('a' + i % 26);
        EXPECT_EQ(tail.append(all), size);
        EXPECT_TRUE(tail.cut());
        EXPECT_TRUE(content() == all) << "of " << size << " bytes";
    }
}

TEST_F(MappedTailTest, AppendsNothingAfterItsCut) {
    const Descriptor file = opened();
    MappedTail tail(file.get());
    tail.append("one");
    EXPECT_TRUE(tail.cut());
    EXPECT_EQ(tail.append("two"), 0U);
    EXPECT_TRUE(tail.cut());
    EXPECT_EQ(content(), "one");
}

TEST_F(MappedTailTest, LetsTheNextWriteContinueWhenTheDiskIsFull) {
    const Descriptor file = opened();
    MappedTail tail(file.get());
    const FileSizeLimit limit(kMost + 10);
    const std::string text(kMost + 3, 'x');
    EXPECT_EQ(tail.append(text), kMost);
    EXPECT_EQ(content().size(), kMost);
    EXPECT_EQ(tail.append("y"), 0U);
    EXPECT_TRUE(writeAll(file.get(), "0123456789"));
    EXPECT_EQ(content().substr(kMost), "0123456789");
    EXPECT_FALSE(writeAll(file.get(), "a"));
    EXPECT_EQ(errno, EFBIG);
}

TEST_F(MappedTailTest, ChangesNoOtherFileThatGotItsNumber) {
    const std::string other = m_folder.write("other", "other");
    const Descriptor file = opened();
    MappedTail tail(file.get());
    tail.append("one");
    const Descriptor itsFile(open(other.c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_GE(dup2(itsFile.get(), file.get()), 0);
    EXPECT_EQ(tail.append(std::string(kMost, 'x')), kMost - 3);
    EXPECT_FALSE(tail.cut());
    EXPECT_EQ(fileContent(other), "other");
}

std::string numbered(std::size_t i) { return "number " + std::to_string(i) + std::string(1000, ' ') + '\n'; }

// Appends numbered texts, and counts those that are appended, until the process is killed.
[[noreturn]] void appendNumbers(const std::string& path, std::atomic<std::size_t>& count) {
    constexpr std::size_t kEnough = 5000;
    MappedTail tail(open(path.c_str(), O_CREAT | O_TRUNC | O_RDWR | O_CLOEXEC, 0600));
    for (; count != kEnough; ++count) tail.append(numbered(count));
    for (;;) pause();
}

TEST_F(MappedTailTest, LosesAtMostTheLastTextWhenTheProcessIsKilled) {
    for (const useconds_t after : {100U, 300U, 500U, 1000U, 2000U}) {
        const SharedMemory<std::atomic<std::size_t>> count;
        const pid_t child = fork();
        if (child == 0) appendNumbers(path(), *count);
        while (*count == 0) usleep(100);
        usleep(after);
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        cutAfterText(path());
        std::string expected;
        for (std::size_t i = 0; i <= *count; ++i) expected += numbered(i);
        const std::string left = content();
        EXPECT_GE(left.size(), expected.size() - numbered(*count).size());
        EXPECT_TRUE(left == expected.substr(0, left.size())) << *count << " texts, " << left.size() << " bytes";
    }
}

TEST(TextLength, EndsAtAZeroByteNearTheEnd) {
    using namespace std::string_literals;
    struct Case {
        const char* why;
        std::string content;
        std::size_t length;
    };
    const Case cases[] = {
        {"an empty file", "", 0},
        {"text only", "one\n", 4},
        {"zero bytes after the text", "one\n\0\0\0"s, 4},
        {"the rest of a text without its first byte", "one\n\0wo\n\0"s, 4},
        {"no text", std::string(10, '\0'), 0},
        {"as many as there can be", "one\n" + std::string(kMost, '\0'), 4},
        {"one more, so that they are no end", "one\n\0"s + std::string(kMost, 'x'), kMost + 5},
    };
    for (const Case& c : cases) EXPECT_EQ(textLengthOf(c.content), c.length) << c.why;
}

TEST_F(MappedTailTest, CutAfterTextKeepsTheText) {
    using namespace std::string_literals;
    const std::string start(3 * kMost, 'x');
    m_folder.write("file", start + "one\n\0wo\n\0"s);
    cutAfterText(path());
    EXPECT_TRUE(content() == start + "one\n");
    cutAfterText(path());
    EXPECT_TRUE(content() == start + "one\n");
    cutAfterText(m_folder.path("gone"));
    EXPECT_EQ(m_folder.count(), 1);
}

TEST_F(MappedTailTest, CutAfterTextLeavesTheFileOfARunningProcess) {
    m_folder.write("file", std::string(10, '\0'));
    Pipe pipe;
    const pid_t child = fork();
    if (child == 0) {
        const Descriptor file(open(path().c_str(), O_RDWR | O_CLOEXEC));
        claim(file.get());
        (void)!::write(pipe.writer.get(), "x", 1);
        for (;;) pause();
    }
    char byte = 0;
    while (read(pipe.reader.get(), &byte, 1) != 1) usleep(100);
    cutAfterText(path());
    EXPECT_EQ(content().size(), 10U);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    cutAfterText(path());
    EXPECT_EQ(content().size(), 0U);
}

}  // namespace
}  // namespace vexa::runner
