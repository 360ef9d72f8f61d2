#include "system/files/ProgramFiles.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>

#include "support/TemporaryFolder.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

// Sets PATH while it lives.
class Path {
public:
    explicit Path(const std::string& path) { setenv("PATH", path.c_str(), 1); }
    ~Path() { setenv("PATH", m_before.c_str(), 1); }
    Path(const Path&) = delete;
    Path& operator=(const Path&) = delete;

private:
    std::string m_before = std::getenv("PATH");
};

class ProgramFiles : public ::testing::Test {
protected:
    std::string program(const std::string& name, mode_t mode = 0755) {
        const std::string file = m_folder.write(name, "");
        chmod(file.c_str(), mode);
        return file;
    }

    tests::TemporaryFolder m_folder;
};

TEST_F(ProgramFiles, AProgramIsFoundInTheFirstFolderOfThePathThatHasIt) {
    const std::string file = program("tool");
    const std::string folder = fs::path(file).parent_path();
    const Path path("/nowhere:" + folder + ":/usr/bin");
    EXPECT_EQ(findProgram("tool"), file);
    EXPECT_EQ(findProgram("env"), "/usr/bin/env");
    EXPECT_EQ(findProgram("no-such-tool"), "");
}

TEST_F(ProgramFiles, AFileThatCannotBeStartedIsNoProgram) {
    const Path path(fs::path(program("text", 0644)).parent_path());
    EXPECT_EQ(findProgram("text"), "");
    EXPECT_FALSE(isExecutableFile("/tmp"));
}

TEST_F(ProgramFiles, APathIsNotSearched) { EXPECT_EQ(findProgram("./tool"), "./tool"); }

TEST_F(ProgramFiles, WithoutAPathTheUsualFoldersAreSearched) {
    const Path path("");
    EXPECT_NE(findProgram("sh"), "");
}

TEST_F(ProgramFiles, TheFirstPlaceBesideTheProgramThatHasAFileIsTaken) {
    const fs::path own = fs::read_symlink("/proc/self/exe");
    const std::string name = own.filename();
    const std::string other = "../" + own.parent_path().filename().string() + '/' + name;
    EXPECT_EQ(fileBesideProgram({"no-such-file", ".", other.c_str()}), fs::canonical(own).string());
    EXPECT_EQ(fileBesideProgram({"no-such-file", "."}), "");
}

}  // namespace
}  // namespace vexa::runner
