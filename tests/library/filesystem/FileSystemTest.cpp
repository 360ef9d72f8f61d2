#include "vexautilutil/FileSystem.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <optional>

#include "support/TemporaryFolder.h"

namespace vexa::filesystem {
namespace {

namespace bfs = boost::filesystem;

class FileSystemTest : public testing::Test {
protected:
    void link(const std::string& target, const std::string& name) const {
        ASSERT_EQ(symlink(target.c_str(), m_folder.path(name).c_str()), 0);
    }

    const tests::TemporaryFolder m_folder;
    const std::string m_file = m_folder.write("file.txt", "12345");
    const std::string m_missing = m_folder.path("missing.txt");
    const std::string m_overLong = m_folder.path(std::string(300, 'n'));
};

std::string contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST_F(FileSystemTest, OpensAFile) {
    FILE* const stream = fileOpen(m_file, "rb");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(std::fgetc(stream), '1');
    std::fclose(stream);
}

TEST_F(FileSystemTest, DoesNotOpenWhatIsNotThere) {
    errno = 0;
    EXPECT_EQ(fileOpen(m_missing, "rb"), nullptr);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(fileOpen(m_folder.path("no/parent.txt"), "w"), nullptr);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(fileOpen(m_overLong, "w"), nullptr);
    EXPECT_EQ(errno, ENAMETOOLONG);
}

TEST_F(FileSystemTest, OpensFilesWhoseNamesAreNoUtf8) {
    const std::string path = m_folder.write("\xff\xfe\x80", "x");
    FILE* const stream = fileOpen(path, "rb");
    ASSERT_NE(stream, nullptr);
    std::fclose(stream);
    EXPECT_TRUE(fileExists(path));
    unsigned long size = 0;
    EXPECT_TRUE(fileSize(path, size));
    EXPECT_EQ(fileRemove(path), 0);
}

TEST_F(FileSystemTest, ReopensAStream) {
    FILE* const stream = fileOpen(m_file, "rb");
    ASSERT_NE(stream, nullptr);
    const std::string other = m_folder.write("other.txt", "abc");
    FILE* const reopened = fileReopen(other, "rb", stream);
    ASSERT_EQ(reopened, stream);
    EXPECT_EQ(std::fgetc(reopened), 'a');
    std::fclose(reopened);
}

TEST_F(FileSystemTest, ReportsAReopeningThatFails) {
    FILE* const stream = fileOpen(m_file, "rb");
    ASSERT_NE(stream, nullptr);
    errno = 0;
    EXPECT_EQ(fileReopen(m_missing, "rb", stream), nullptr);
    EXPECT_EQ(errno, ENOENT);
    std::fclose(stream);  // fileReopen() closed the file, but glibc still holds the stream
}

TEST_F(FileSystemTest, RenamesOverAFileThatIsThere) {
    const std::string target = m_folder.write("target.txt", "old");
    EXPECT_EQ(fileRename(m_file, target), 0);
    EXPECT_EQ(contents(target), "12345");
    EXPECT_FALSE(fileExists(m_file));
}

TEST_F(FileSystemTest, ReportsARenameThatFails) {
    errno = 0;
    EXPECT_EQ(fileRename(m_missing, m_file), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(contents(m_file), "12345");
}

TEST_F(FileSystemTest, RemovesFilesAndEmptyDirectories) {
    bfs::create_directory(m_folder.path("empty"));
    EXPECT_EQ(fileRemove(m_file), 0);
    EXPECT_EQ(fileRemove(m_folder.path("empty")), 0);
    EXPECT_EQ(m_folder.count(), 0);
}

TEST_F(FileSystemTest, ReportsARemovalThatFails) {
    errno = 0;
    EXPECT_EQ(fileRemove(m_missing), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(fileRemove(m_folder.path()), -1);
    EXPECT_EQ(errno, ENOTEMPTY);
}

TEST_F(FileSystemTest, SizesAFile) {
    unsigned long size = 0;
    EXPECT_TRUE(fileSize(m_file, size));
    EXPECT_EQ(size, 5u);
    EXPECT_TRUE(fileSize(m_file.c_str(), size));
    EXPECT_EQ(size, 5u);
}

TEST_F(FileSystemTest, SizesAnEmptyFile) {
    unsigned long size = 7;
    EXPECT_TRUE(fileSize(m_folder.write("empty", ""), size));
    EXPECT_EQ(size, 0u);
}

TEST_F(FileSystemTest, SizesWhatALinkLeadsTo) {
    link("file.txt", "link");
    unsigned long size = 0;
    EXPECT_TRUE(fileSize(m_folder.path("link"), size));
    EXPECT_EQ(size, 5u);
}

TEST_F(FileSystemTest, LeavesTheSizeAloneOnFailure) {
    unsigned long size = 7;
    link("nowhere", "dangling");
    for (const std::string& path : {m_missing, m_overLong, m_folder.path("dangling"), std::string()}) {
        EXPECT_FALSE(fileSize(path, size)) << path;
        EXPECT_FALSE(fileSize(path.c_str(), size)) << path;
    }
    EXPECT_EQ(size, 7u);
}

TEST(ConvertPathDelimiters, ReplacesEveryBackslashAndNothingElse) {
    const struct {
        std::string path;
        std::string converted;
    } cases[] = {{"a\\b\\c", "a/b/c"}, {"a/b", "a/b"},    {"", ""},          {"\\", "/"},
                 {"\\\\x\\", "//x/"},  {"C:\\d", "C:/d"}, {"a\\/b", "a//b"}, {"\xe4\\b", "\xe4/b"}};
    for (const auto& c : cases) {
        std::string path = c.path;
        convertPathDelimitersForOS(path);
        EXPECT_EQ(path, c.converted) << c.path;
    }
}

TEST_F(FileSystemTest, TellsTheStatusOfFilesAndDirectories) {
    EXPECT_EQ(fileStatus(m_file, true).type(), bfs::regular_file);
    EXPECT_EQ(fileStatus(m_folder.path(), true).type(), bfs::directory_file);
    EXPECT_EQ(fileStatus(m_missing, true).type(), bfs::file_not_found);
    EXPECT_EQ(fileStatus("", true).type(), bfs::file_not_found);
}

TEST_F(FileSystemTest, TellsTheStatusOfALinkOrOfWhatItLeadsTo) {
    link("file.txt", "link");
    EXPECT_EQ(fileStatus(m_folder.path("link"), true).type(), bfs::regular_file);
    EXPECT_EQ(fileStatus(m_folder.path("link"), false).type(), bfs::symlink_file);
}

TEST_F(FileSystemTest, TellsTheStatusOfADanglingLink) {
    link("nowhere", "dangling");
    EXPECT_EQ(fileStatus(m_folder.path("dangling"), true).type(), bfs::file_not_found);
    EXPECT_EQ(fileStatus(m_folder.path("dangling"), false).type(), bfs::symlink_file);
}

TEST_F(FileSystemTest, TellsTheStatusOfALinkLoop) {
    link("two", "one");
    link("one", "two");
    EXPECT_EQ(fileStatus(m_folder.path("one"), true).type(), bfs::status_error);
    EXPECT_EQ(fileStatus(m_folder.path("one"), false).type(), bfs::symlink_file);
}

TEST_F(FileSystemTest, SwallowsTheErrorOfAnOverLongName) {
    EXPECT_EQ(fileStatus(m_overLong, true).type(), bfs::status_error);
    EXPECT_EQ(fileStatus(m_overLong, false).type(), bfs::status_error);
}

TEST_F(FileSystemTest, FindsFilesThatAreNoDirectories) {
    EXPECT_TRUE(fileExists(m_file));
    EXPECT_TRUE(fileExists("/dev/null"));
    EXPECT_FALSE(fileExists(m_folder.path()));
    EXPECT_FALSE(fileExists(m_missing));
    EXPECT_FALSE(fileExists(m_overLong));
    EXPECT_FALSE(fileExists(""));
}

TEST_F(FileSystemTest, FindsDirectories) {
    EXPECT_TRUE(dirExists(m_folder.path()));
    EXPECT_FALSE(dirExists(m_file));
    EXPECT_FALSE(dirExists(m_missing));
    EXPECT_FALSE(dirExists(m_overLong));
    EXPECT_FALSE(dirExists(""));
}

TEST_F(FileSystemTest, FollowsLinksWhenItLooksForFilesAndDirectories) {
    link("file.txt", "to-file");
    link(m_folder.path(), "to-folder");
    link("nowhere", "dangling");
    link("loop", "loop");
    EXPECT_TRUE(fileExists(m_folder.path("to-file")));
    EXPECT_FALSE(fileExists(m_folder.path("to-folder")));
    EXPECT_TRUE(dirExists(m_folder.path("to-folder")));
    for (const char* name : {"dangling", "loop"}) {
        EXPECT_FALSE(fileExists(m_folder.path(name))) << name;
        EXPECT_FALSE(dirExists(m_folder.path(name))) << name;
    }
}

TEST(MakeAbsolute, PutsTheBaseBeforeARelativePath) {
    const struct {
        const char* path;
        const char* base;
        const char* absolute;
    } cases[] = {
        {"data/x.txt", "/base", "/base/data/x.txt"},
        {"/tmp/x", "/base", "/tmp/x"},
        {"x", "rel", "rel/x"},
        {"../x", "/base", "/base/../x"},
        {"./x", "/base/", "/base/./x"},
        {"", "/base", "/base"},
        {"x", "", "x"},
        {"/", "/base", "/"},
    };
    for (const auto& c : cases) EXPECT_EQ(makeAbsolute(c.path, c.base).string(), c.absolute) << c.path;
}

TEST(PathFunctions, DoNotThrow) {
    const bfs::path path;
    EXPECT_TRUE(noexcept(fileStatus(path, true)));
    EXPECT_TRUE(noexcept(fileExists(path)));
    EXPECT_TRUE(noexcept(dirExists(path)));
    EXPECT_TRUE(noexcept(makeAbsolute(path, path)));
    EXPECT_TRUE(noexcept(isFileOrDirWritable(path)));
}

// Sets or unsets an environment variable, and restores it in the destructor.
class Variable {
public:
    Variable(const char* name, const char* value) : m_name(name) {
        if (const char* before = std::getenv(name)) m_before = before;
        set(value);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable() { set(m_before ? m_before->c_str() : nullptr); }

private:
    void set(const char* value) const { value == nullptr ? unsetenv(m_name) : setenv(m_name, value, 1); }

    const char* m_name;
    std::optional<std::string> m_before;
};

TEST(HomeDirectory, ComesFromTheFirstVariableThatIsSet) {
    const struct {
        const char* why;
        const char* home;
        const char* userName;
        const char* user;
        const char* directory;
    } cases[] = {
        {"HOME is taken as it is", "/h/me", "ann", "bob", "/h/me"},
        {"USERNAME comes before USER", nullptr, "ann", "bob", "/home/ann"},
        {"an empty HOME counts as unset", "", nullptr, "ann", "/home/ann"},
        {"an empty USERNAME counts as unset", nullptr, "", "bob", "/home/bob"},
        {"USERNAME alone", nullptr, "ann", nullptr, "/home/ann"},
        {"nothing is known", nullptr, nullptr, nullptr, ""},
        {"all are empty", "", "", "", ""},
        {"the directory need not exist", "relative", nullptr, nullptr, "relative"},
    };
    for (const auto& c : cases) {
        const Variable home("HOME", c.home);
        const Variable userName("USERNAME", c.userName);
        const Variable user("USER", c.user);
        EXPECT_EQ(homeDirectory(), c.directory) << c.why;
    }
}

}  // namespace
}  // namespace vexa::filesystem
