// Tests AsciiFile and the file functions if the file system fails, or if a path is not a regular file. No descriptor
// may stay open.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <thread>

#include "Child.h"
#include "library/textfile/FailingStreams.h"
#include "support/FailingAllocator.h"
#include "support/TemporaryFolder.h"
#include "vexautilutil/AsciiFile.h"
#include "vexautilutil/FileSystem.h"

namespace vexa::tests {
namespace {

using vexautilutil::AsciiFile;

constexpr std::chrono::milliseconds kShortly(200);

class FileFault : public testing::Test {
protected:
    ~FileFault() override {
        EXPECT_EQ(openDescriptors(), m_descriptorsBefore);
        EXPECT_EQ(openStreams(), m_streamsBefore);
    }

    // Opens `path` with an AsciiFile that holds another file.
    std::string opened(const std::string& path) const {
        AsciiFile file;
        if (!file.open(m_held)) return "the file before was not held";
        errno = 0;
        const bool isOpened = file.open(path);
        const int reason = errno;
        if (isOpened != (file.isOpen() && isOpened)) return "opened, but not open";
        if (!isOpened) {
            const bool isKept = file.isOpen() && std::strcmp(file.readRawLineAtOffset(0), "held") == 0;
            return std::string(isKept ? "kept: " : "let go: ") + std::strerror(reason);
        }
        return std::to_string(file.numLinesInFile()) + " lines";
    }

    const TemporaryFolder m_folder;
    const std::string m_held = m_folder.write("held.txt", "held\n");
    const std::string m_path = m_folder.write("in.txt", "one\ntwo\nthree\n");

private:
    long m_descriptorsBefore = openDescriptors();
    long m_streamsBefore = openStreams();
};

// ---- Each call fails or returns less than requested

TEST_F(FileFault, IsReportedByOpeningATextFile) {
    const struct {
        StreamCall call;
        const char* outcome;
    } cases[] = {
        {StreamCall::None, "3 lines"},
        {StreamCall::Open, "kept: Input/output error"},
        {StreamCall::SeekToEnd, "kept: Input/output error"},
        {StreamCall::Tell, "kept: Input/output error"},
        {StreamCall::SeekToBegin, "kept: Input/output error"},
        {StreamCall::FailedRead, "let go: Stale file handle"},
        {StreamCall::ShortRead, "let go: Input/output error"},
    };
    for (const auto& c : cases) {
        AsciiFile file;
        ASSERT_TRUE(file.open(m_held));
        errno = 0;
        bool isOpened = false;
        bool hasFailed = false;
        {
            const FailingStream failing(c.call);
            isOpened = file.open(m_path);
            hasFailed = FailingStream::hasFailed();
        }
        const int reason = errno;
        const std::string outcome = isOpened
                                        ? std::to_string(file.numLinesInFile()) + " lines"
                                        : std::string(file.isOpen() ? "kept: " : "let go: ") + std::strerror(reason);
        EXPECT_EQ(outcome, c.outcome);
        EXPECT_EQ(hasFailed, c.call != StreamCall::None);
        EXPECT_EQ(file.fileName(), m_path);
    }
}

TEST_F(FileFault, OfClosingIsNoneOfATextThatWasReadWhole) {
    AsciiFile file;
    bool hasFailed = false;
    {
        const FailingStream failing(StreamCall::Close);
        EXPECT_TRUE(file.open(m_path));
        hasFailed = FailingStream::hasFailed();
    }
    EXPECT_TRUE(hasFailed);
    EXPECT_EQ(file.readLineAtOffset(2), "three");
}

TEST_F(FileFault, OfClosingKeepsTheReasonOfTheFailureBefore) {
    AsciiFile file;
    const FailingStream failing(StreamCall::Close);
    EXPECT_FALSE(file.open(m_folder.path()));
    EXPECT_EQ(errno, EISDIR);
}

TEST_F(FileFault, IsReportedByEachFileOperation) {
    const std::string other = m_folder.path("other");
    unsigned long size = 4711;
    const auto failsWith = [](StreamCall call, auto operation) {
        errno = 0;
        const FailingStream failing(call);
        return operation() && FailingStream::hasFailed() && errno == EIO;
    };
    EXPECT_TRUE(failsWith(StreamCall::Open, [&] { return filesystem::fileOpen(m_path, "rb") == nullptr; }));
    EXPECT_TRUE(failsWith(StreamCall::Rename, [&] { return filesystem::fileRename(m_path, other) == -1; }));
    EXPECT_TRUE(failsWith(StreamCall::Remove, [&] { return filesystem::fileRemove(m_path) == -1; }));
    EXPECT_TRUE(failsWith(StreamCall::Stat, [&] { return !filesystem::fileSize(m_path, size); }));
    EXPECT_EQ(size, 4711u);
    EXPECT_EQ(m_folder.count(), 2);
}

TEST_F(FileFault, OfAReopeningClosesTheFile) {
    FILE* const stream = filesystem::fileOpen(m_path, "rb");
    ASSERT_NE(stream, nullptr);
    const long before = openDescriptors();
    EXPECT_EQ(filesystem::fileReopen(m_folder.path("missing"), "rb", stream), nullptr);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(openDescriptors(), before - 1);
    std::fclose(stream);  // frees the C library's memory of the closed stream
}

TEST_F(FileFault, LeavesWhetherAFileIsThereUnknownAndNotFound) {
    const FailingStream failing(StreamCall::Stat);
    EXPECT_EQ(filesystem::fileStatus(m_path, true).type(), boost::filesystem::status_error);
    EXPECT_FALSE(filesystem::fileExists(m_path));
    EXPECT_FALSE(filesystem::dirExists(m_folder.path()));
}

TEST_F(FileFault, MakesAPathNotWritable) {
    EXPECT_TRUE(filesystem::isFileOrDirWritable(m_folder.path()));
    const FailingStream failing(StreamCall::Open);
    EXPECT_FALSE(filesystem::isFileOrDirWritable(m_path));
    EXPECT_FALSE(filesystem::isFileOrDirWritable(m_folder.path()));
    EXPECT_FALSE(filesystem::isFileOrDirWritable(m_folder.path("new")));
    EXPECT_EQ(m_folder.count(), 2);
}

TEST_F(FileFault, OfClosingOrRemovingTheProbeLeavesAPathWritable) {
    for (const StreamCall call : {StreamCall::Close, StreamCall::Remove}) {
        const FailingStream failing(call);
        EXPECT_TRUE(filesystem::isFileOrDirWritable(m_folder.path()));
        EXPECT_TRUE(FailingStream::hasFailed());
    }
    EXPECT_EQ(m_folder.count(), 3) << "the probe that could not be removed";
}

// ---- Paths that are not regular files

TEST_F(FileFault, IsWhatIsNotThereOrNoFile) {
    const std::string loop = m_folder.path("loop");
    const std::string socket = m_folder.path("socket");
    std::filesystem::create_symlink("loop", loop);
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(socket.size(), sizeof address.sun_path);
    std::memcpy(address.sun_path, socket.c_str(), socket.size());
    const void* const generic = &address;
    EXPECT_EQ(bind(descriptor, static_cast<const sockaddr*>(generic), sizeof address), 0);
    close(descriptor);

    EXPECT_EQ(opened(""), "kept: No such file or directory");
    EXPECT_EQ(opened(m_folder.path("missing")), "kept: No such file or directory");
    EXPECT_EQ(opened(m_path + "/below"), "kept: Not a directory");
    EXPECT_EQ(opened(m_folder.path(std::string(300, 'n'))), "kept: File name too long");
    EXPECT_EQ(opened(std::string(5000, '/')), "kept: File name too long");
    EXPECT_EQ(opened(loop), "kept: Too many levels of symbolic links");
    EXPECT_EQ(opened(socket), "kept: No such device or address");
    for (const char* directory : {"/", "/proc", "/proc/self/fd", "/dev"}) {
        EXPECT_EQ(opened(directory), "kept: Is a directory") << directory;
    }
    EXPECT_EQ(opened(m_folder.path()), "kept: Is a directory");
}

TEST_F(FileFault, IsAFileThatDoesNotTellItsSize) {
    // The kernel creates the contents of such a file on reading. It reports the size 0, or refuses to seek.
    for (const char* path :
         {"/proc/self/status", "/proc/self/cmdline", "/proc/self/mem", "/proc/version", "/dev/full", "/dev/null"}) {
        const std::string outcome = opened(path);
        EXPECT_TRUE(outcome == "0 lines" || outcome.substr(0, 6) == "kept: ") << path << ": " << outcome;
    }
}

TEST_F(FileFault, IsAPipe) {
    const std::string pipe = m_folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int writer = ::open(pipe.c_str(), O_RDWR | O_NONBLOCK);
    ASSERT_NE(writer, -1);
    EXPECT_EQ(opened(pipe), "kept: Illegal seek");
    close(writer);
    EXPECT_EQ(inChild([&] { return opened(pipe); }, kShortly), "did not return")
        << "a pipe without a writer is waited for";
}

TEST_F(FileFault, IsAFileThatShrinksWhileItIsRead) {
    AsciiFile file;
    const std::string path = m_folder.write("long", std::string(100000, '\n'));
    bool isOpened = false;
    {
        const FailingStream failing(StreamCall::ShortRead);
        isOpened = file.open(path);
    }
    EXPECT_FALSE(isOpened);
    EXPECT_EQ(errno, EIO);
}

TEST_F(FileFault, OfAPathIsAnsweredWithNo) {
    const std::string pipe = m_folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    unsigned long size = 7;
    EXPECT_TRUE(filesystem::fileSize(pipe, size));
    EXPECT_EQ(size, 0u);
    EXPECT_TRUE(filesystem::fileExists(pipe));
    EXPECT_FALSE(filesystem::dirExists(pipe));
    EXPECT_TRUE(filesystem::fileSize("/proc/self/status", size));
    EXPECT_EQ(size, 0u);
    EXPECT_FALSE(filesystem::fileSize(m_path + "/below", size));
    EXPECT_EQ(filesystem::fileOpen(m_folder.path(), "wb"), nullptr);
    EXPECT_EQ(errno, EISDIR);
    EXPECT_EQ(filesystem::fileRename(m_path, m_folder.path()), -1);
    EXPECT_EQ(filesystem::fileRemove(m_folder.path()), -1);
    EXPECT_EQ(errno, ENOTEMPTY);
    EXPECT_EQ(m_folder.count(), 3);
}

// ---- Missing permissions

TEST_F(FileFault, IsAFileThatTheUserMayNotRead) {
    ASSERT_EQ(chmod(m_folder.path().c_str(), 0755), 0);
    ASSERT_EQ(chmod(m_held.c_str(), 0644), 0);
    ASSERT_EQ(chmod(m_path.c_str(), 0), 0);
    EXPECT_EQ(inChildWithoutRights([&] { return opened(m_path); }), "kept: Permission denied");
    EXPECT_EQ(inChildWithoutRights([&] { return opened(m_held); }), "1 lines");
}

TEST_F(FileFault, IsAFolderThatTheUserMayNotSearch) {
    ASSERT_EQ(chmod(m_folder.path().c_str(), 0755), 0);
    ASSERT_EQ(chmod(m_held.c_str(), 0644), 0);
    const std::string closed = m_folder.path("closed");
    ASSERT_TRUE(std::filesystem::create_directory(closed));
    const std::string path = m_folder.write("closed/in.txt", "1\n");
    ASSERT_EQ(chmod(closed.c_str(), 0), 0);
    const auto answers = [&]() -> std::string {
        unsigned long size = 7;
        if (filesystem::fileSize(path, size) || size != 7) return "sized";
        if (filesystem::fileExists(path) || filesystem::dirExists(path)) return "found";
        if (filesystem::isFileOrDirWritable(path) || filesystem::isFileOrDirWritable(closed)) return "writable";
        if (filesystem::fileRename(path, m_folder.path("out")) == 0) return "renamed";
        if (filesystem::fileRemove(path) == 0) return "removed";
        return opened(path);
    };
    EXPECT_EQ(inChildWithoutRights(answers), "kept: Permission denied");
    ASSERT_EQ(chmod(closed.c_str(), 0700), 0);
    EXPECT_TRUE(std::filesystem::exists(path));
}

TEST_F(FileFault, IsAFolderThatTheUserMayNotWriteIn) {
    ASSERT_EQ(chmod(m_folder.path().c_str(), 0555), 0);
    ASSERT_EQ(chmod(m_path.c_str(), 0444), 0);
    const auto isWritable = [&]() -> std::string {
        if (filesystem::isFileOrDirWritable(m_folder.path())) return "folder";
        if (filesystem::isFileOrDirWritable(m_path)) return "file";
        if (filesystem::isFileOrDirWritable(m_folder.path("new"))) return "new file";
        return "nothing";
    };
    EXPECT_EQ(inChildWithoutRights(isWritable), "nothing");
    ASSERT_EQ(chmod(m_folder.path().c_str(), 0755), 0);
    EXPECT_EQ(m_folder.count(), 2);
}

TEST_F(FileFault, IsThatNoDescriptorIsLeft) {
    if (VEXA_CHECKS_UNDEFINED) GTEST_SKIP() << "the sanitizer needs descriptors of its own";
    EXPECT_EQ(inChild([&]() -> std::string {
                  while (::open("/", O_RDONLY) != -1) {}
                  if (errno != EMFILE) return "not used up";
                  AsciiFile file;
                  if (file.open(m_path) || errno != EMFILE) return "opened";
                  if (filesystem::fileOpen(m_path, "rb") != nullptr) return "opened by fileOpen";
                  unsigned long size = 0;
                  return filesystem::fileSize(m_path, size) && size == 14 ? "reported" : "not sized";
              }),
              "reported");
}

TEST_F(FileFault, IsAFileTooLargeForTheMemory) {
    const std::string path = m_folder.write("huge", "");
    ASSERT_EQ(truncate(path.c_str(), off_t{1} << 42), 0);
    const long before = FailingAllocator::liveBlocks();
    AsciiFile file;
    const FailingAllocator allocator(1, Failing::Once);  // allows the name; the text then fails
    EXPECT_FALSE(file.open(path));
    EXPECT_EQ(errno, ENOMEM);
    EXPECT_FALSE(file.isOpen());
    EXPECT_LE(FailingAllocator::liveBlocks(), before + 2);
}

TEST(FileFaultCount, SeesADescriptorThatIsLeftOpen) {
    const long before = openDescriptors();
    const int descriptor = ::open("/", O_RDONLY);
    EXPECT_EQ(openDescriptors(), before + 1);
    close(descriptor);
    EXPECT_EQ(openDescriptors(), before);
}

TEST(Child, TellsWhatBecameOfIt) {
    EXPECT_EQ(inChild([]() -> std::string { return "done"; }), "done");
    EXPECT_EQ(inChild([]() -> std::string { std::abort(); }), "ended by signal 6");
    EXPECT_EQ(inChild([]() -> std::string { throw std::runtime_error("why"); }), "let out an exception: why");
    EXPECT_EQ(inChild(
                  []() -> std::string {
                      for (;;) pause();
                  },
                  kShortly),
              "did not return");
    EXPECT_EQ(inChildWithoutRights([] { return std::to_string(geteuid()); }),
              geteuid() == 0 ? "65534" : std::to_string(geteuid()));
}

}  // namespace
}  // namespace vexa::tests
