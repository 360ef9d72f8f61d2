#include "system/processes/OwnProcess.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vexa::runner {
namespace {

TEST(OwnProcess, IsTheProcessThatMadeTheObject) {
    const OwnProcess process;
    EXPECT_TRUE(process.isThis());
    const pid_t child = fork();
    if (child == 0) _exit(process.isThis() ? 1 : 0);
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(process.isThis());
}

}  // namespace
}  // namespace vexa::runner
