#include "system/processes/OtherThreads.h"

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <future>
#include <thread>

namespace vexa::runner {
namespace {

TEST(OtherThreads, AreThoseThatRun) {
    std::promise<void> end;
    std::thread other([&] { end.get_future().wait(); });
    EXPECT_TRUE(hasOtherThreads());
    end.set_value();
    other.join();
}

// The system lists a joined thread only for a moment, but the first thread of a process until the process ends.
TEST(OtherThreads, AreNotThoseThatHaveEnded) {
    const pid_t child = fork();
    if (child == 0) {
        std::thread([] {
            for (int i = 0; i != 1000 && hasOtherThreads(); ++i) usleep(1000);
            _exit(hasOtherThreads() ? EXIT_FAILURE : EXIT_SUCCESS);
        }).detach();
        syscall(SYS_exit, 0);  // ends this thread only
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace vexa::runner
