#include "system/files/LiveFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iterator>

#include "support/TemporaryFolder.h"
#include "system/Descriptor.h"
#include "system/files/OutputTarget.h"

namespace vexa::runner {
namespace {

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(LiveFile, IsTheSameFileInBothWays) {
    const tests::TemporaryFolder folder;
    for (const Append_e how : {Append_e::BySystemCall, Append_e::ByMapping}) {
        const std::string path = folder.write("file", std::string(2 * MappedTail::kMost, 'x'));
        LiveFile file(path, how);
        file.append("one\n");
        file.append("");
        file.append(std::string(MappedTail::kMost, 'y'));
        file.close();
        EXPECT_TRUE(contentOf(path) == "one\n" + std::string(MappedTail::kMost, 'y'));
    }
}

TEST(LiveFile, WritesToAPipeWithoutAMap) {
    const tests::TemporaryFolder folder;
    const std::string path = folder.path("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const Descriptor reader(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    LiveFile file(path, Append_e::ByMapping);
    file.append("one\n");
    std::string text(10, ' ');
    EXPECT_EQ(read(reader.get(), text.data(), text.size()), 4);
    EXPECT_EQ(text.substr(0, 4), "one\n");
    file.close();
}

TEST(LiveFile, RefusesAFileThatAnotherProcessHasMapped) {
    const tests::TemporaryFolder folder;
    const std::string path = folder.path("file");
    LiveFile file(path, Append_e::ByMapping);
    file.append("one\n");
    const pid_t child = fork();
    if (child == 0) {
        try {
            const LiveFile other(path, Append_e::ByMapping);
        } catch (const OutputError& error) {
            _exit(error.what() == path + ": cannot be written: another run writes it" ? 0 : 1);
        }
        _exit(2);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    file.append("two\n");
    file.close();
    EXPECT_EQ(contentOf(path), "one\ntwo\n");
}

}  // namespace
}  // namespace vexa::runner
