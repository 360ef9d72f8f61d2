#include "commands/check/trial/Confinement.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <ostream>
#include <string>
#include <system_error>

#include "support/TemporaryFolder.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

constexpr int kCannotConfine = 77;

struct Way {
    const char* name;
    void (*confine)(const fs::path& folder);
};

void PrintTo(const Way& way, std::ostream* out) { *out << way.name; }

// The answer of a confined process; nothing if the system cannot confine processes.
enum class Answer_e { No, Yes, NotGranted };

class ConfinementTest : public ::testing::TestWithParam<Way> {
protected:
    ConfinementTest() {
        for (const fs::path& folder : {inside(), outside()}) {
            fs::create_directory(folder);
            std::ofstream(folder / "file") << "kept";
            fs::create_directory(folder / "empty");
        }
    }

    fs::path inside() const { return fs::path(m_folder.path()) / "inside"; }
    fs::path outside() const { return fs::path(m_folder.path()) / "outside"; }

    Answer_e ask(const std::function<bool()>& question) const {
        const pid_t child = fork();
        if (child == 0) _exit(answerTo(question));
        int status = 0;
        waitpid(child, &status, 0);
        if (WIFEXITED(status) && WEXITSTATUS(status) == kCannotConfine) return Answer_e::NotGranted;
        return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? Answer_e::Yes : Answer_e::No;
    }

private:
    int answerTo(const std::function<bool()>& question) const {
        fs::current_path(inside());
        try {
            GetParam().confine(inside());
        } catch (const std::system_error&) {
            return kCannotConfine;
        }
        return question() ? 0 : 1;
    }

    const tests::TemporaryFolder m_folder;
};

struct Change {
    const char* what;
    bool (*make)(const fs::path& folder);
};

const Change kChanges[] = {
    {"a new file", [](const fs::path& folder) { return std::ofstream(folder / "new").is_open(); }},
    {"a file", [](const fs::path& folder) { return open((folder / "file").c_str(), O_WRONLY) >= 0; }},
    {"the size of a file", [](const fs::path& folder) { return truncate((folder / "file").c_str(), 0) == 0; }},
    {"a new folder", [](const fs::path& folder) { return mkdir((folder / "new-folder").c_str(), 0777) == 0; }},
    {"a new pipe", [](const fs::path& folder) { return mkfifo((folder / "new-pipe").c_str(), 0777) == 0; }},
    {"a new link", [](const fs::path& folder) { return symlink("target", (folder / "new-link").c_str()) == 0; }},
    {"a folder to be removed", [](const fs::path& folder) { return rmdir((folder / "empty").c_str()) == 0; }},
    {"a file to be renamed",
     [](const fs::path& folder) { return rename((folder / "file").c_str(), (folder / "moved").c_str()) == 0; }},
    {"a file to be removed",
     [](const fs::path& folder) {
         return unlink((folder / "moved").c_str()) == 0 || unlink((folder / "file").c_str()) == 0;
     }},
};

TEST_P(ConfinementTest, AllowsEveryChangeBelowTheFolder) {
    for (const Change& change : kChanges) {
        SCOPED_TRACE(change.what);
        const Answer_e answer = ask([&] { return change.make(inside()); });
        if (answer == Answer_e::NotGranted) GTEST_SKIP() << "the system does not grant it";
        EXPECT_EQ(answer, Answer_e::Yes);
    }
}

TEST_P(ConfinementTest, RefusesEveryChangeElsewhere) {
    for (const Change& change : kChanges) {
        SCOPED_TRACE(change.what);
        const Answer_e answer = ask([&] { return change.make(outside()); });
        if (answer == Answer_e::NotGranted) GTEST_SKIP() << "the system does not grant it";
        EXPECT_EQ(answer, Answer_e::No);
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(outside()), fs::directory_iterator()), 2);
    EXPECT_EQ(fs::file_size(outside() / "file"), 4U);
}

TEST_P(ConfinementTest, MeansTheCurrentFolderToo) {
    const Answer_e answer = ask([] { return std::ofstream("new").is_open() && !std::ofstream("../outside/file"); });
    if (answer == Answer_e::NotGranted) GTEST_SKIP() << "the system does not grant it";
    EXPECT_EQ(answer, Answer_e::Yes);
}

TEST_P(ConfinementTest, LetsFilesBeReadAndDevicesBeWritten) {
    const Answer_e answer =
        ask([this] { return std::ifstream(outside() / "file").is_open() && std::ofstream("/dev/null").is_open(); });
    if (answer == Answer_e::NotGranted) GTEST_SKIP() << "the system does not grant it";
    EXPECT_EQ(answer, Answer_e::Yes);
}

INSTANTIATE_TEST_SUITE_P(By, ConfinementTest,
                         ::testing::Values(Way{"Landlock", confineByLandlock}, Way{"Mounts", confineByMounts}));

}  // namespace
}  // namespace vexa::runner
