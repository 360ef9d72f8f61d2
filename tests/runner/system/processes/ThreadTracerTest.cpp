#include "system/processes/ThreadTracer.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <atomic>
#include <vector>

#include "runner/system/processes/TracedChild.h"

namespace vexa::runner {
namespace {

class ThreadTracerTest : public ::testing::Test {
protected:
    int endOf(TracedChild& child) {
        EXPECT_EQ(m_tracer.trace(child.id(), true), 0);
        child.go();
        return child.endUnder(m_tracer);
    }

    std::vector<ThreadTracer::Ending> m_endings;
    std::vector<pid_t> m_stops;
    ThreadTracer m_tracer{[this](const ThreadTracer::Ending& ending) { m_endings.push_back(ending); },
                          [this](pid_t process) { m_stops.push_back(process); }};
};

TEST_F(ThreadTracerTest, SeesASignalBeforeItEndsTheProcess) {
    TracedChild child([] { raise(SIGSEGV); });
    const int end = endOf(child);
    ASSERT_EQ(m_endings.size(), 1U);
    EXPECT_EQ(m_endings[0].process, child.id());
    EXPECT_EQ(m_endings[0].thread, child.id());
    EXPECT_EQ(m_endings[0].signal.si_signo, SIGSEGV);
    EXPECT_TRUE(WIFSIGNALED(end));
    EXPECT_EQ(WTERMSIG(end), SIGSEGV);
}

TEST_F(ThreadTracerTest, LeavesASignalToTheProcessThatHandlesIt) {
    TracedChild child([] {
        signal(SIGABRT, [](int) { _exit(3); });
        raise(SIGABRT);
    });
    const int end = endOf(child);
    EXPECT_EQ(WEXITSTATUS(end), 3);
    EXPECT_TRUE(m_endings.empty());
}

TEST_F(ThreadTracerTest, IsNotConcernedByTheWishOfAnotherProcess) {
    TracedChild child([] { pause(); });
    ASSERT_EQ(m_tracer.trace(child.id(), true), 0);
    kill(child.id(), SIGTERM);
    EXPECT_EQ(WTERMSIG(child.endUnder(m_tracer)), SIGTERM);
    EXPECT_TRUE(m_endings.empty());
}

std::atomic<bool> mayRaise{false};

TEST_F(ThreadTracerTest, TracesThreadsThatRanBefore) {
    TracedChild child(
        [] {
            mayRaise = true;
            for (;;) pause();
        },
        [] {
            std::thread([] {
                while (!mayRaise) std::this_thread::sleep_for(std::chrono::milliseconds(1));
                raise(SIGABRT);
            }).detach();
        });
    const int end = endOf(child);
    EXPECT_EQ(WTERMSIG(end), SIGABRT);
    ASSERT_EQ(m_endings.size(), 1U);
    EXPECT_EQ(m_endings[0].process, child.id());
    EXPECT_NE(m_endings[0].thread, child.id());
}

TEST_F(ThreadTracerTest, StopsAllThreadsAndLetsThemGoOn) {
    TracedChild child([] { _exit(4); },
                      [] {
                          for (int i = 0; i != 3; ++i) std::thread([] { pause(); }).detach();
                      });
    ASSERT_EQ(m_tracer.trace(child.id(), true), 0);
    std::vector<pid_t> threads;
    m_tracer.withAllStopped(child.id(), [&](const std::vector<pid_t>& stopped) { threads = stopped; });
    EXPECT_EQ(threads.size(), 4U);
    EXPECT_EQ(std::count(threads.begin(), threads.end(), child.id()), 1);
    child.go();
    EXPECT_EQ(WEXITSTATUS(child.endUnder(m_tracer)), 4);
}

TEST_F(ThreadTracerTest, ReportsThatASignalStoppedTheProcess) {
    TracedChild child([] { _exit(5); });
    ASSERT_EQ(m_tracer.trace(child.id(), true), 0);
    kill(child.id(), SIGSTOP);
    EXPECT_TRUE(TracedChild::attendUntil(m_tracer, [this] { return !m_stops.empty(); }));
    EXPECT_EQ(m_stops, std::vector<pid_t>{child.id()});
    kill(child.id(), SIGCONT);
    child.go();
    EXPECT_EQ(WEXITSTATUS(child.endUnder(m_tracer)), 5);
}

// Memory that processes share.
std::atomic<pid_t>& sharedId() {
    void* const memory =
        mmap(nullptr, sizeof(std::atomic<pid_t>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return *new (memory) std::atomic<pid_t>(0);
}

TEST_F(ThreadTracerTest, LeavesTheEndOfAProcessToItsParent) {
    std::atomic<pid_t>& grandchild = sharedId();
    TracedChild child(
        [&] {
            int status = 0;
            waitpid(grandchild, &status, 0);
            _exit(WEXITSTATUS(status));
        },
        [&] {
            const pid_t id = fork();
            if (id == 0) {
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
                _exit(6);
            }
            grandchild = id;
        });
    ASSERT_EQ(m_tracer.trace(grandchild, true), 0);
    child.go();
    EXPECT_EQ(WEXITSTATUS(child.endUnder(m_tracer)), 6);
}

TEST_F(ThreadTracerTest, SaysWhyItCannotTrace) {
    EXPECT_EQ(m_tracer.trace(getpid(), false), EPERM);
    EXPECT_EQ(m_tracer.trace(1 << 22, false), ESRCH);
}

}  // namespace
}  // namespace vexa::runner
