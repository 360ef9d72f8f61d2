// Tests calls on systems and threads that lack something. Each test runs in a process of its own, because a process
// looks once what its system can do.

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/FailingAllocator.h"
#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"

namespace vexa::standin {
namespace {

class CallSlots : public testing::Test {
protected:
    CallSlots() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    // Expects that a new process which does this ends with success.
    static void expectSuccessOf(void (*work)()) {  // NOLINT(readability-function-cognitive-complexity): of the macro
        EXPECT_EXIT(work(), testing::ExitedWithCode(EXIT_SUCCESS), "");
    }

    void SetUp() override {
        if (VEXA_IS_EMULATED) GTEST_SKIP() << "an emulator cannot start this program again";
    }
};

// Makes the system answer as one that has no such call.
void refuseFences() {
    sock_filter filter[] = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                            BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_membarrier, 0, 1),
                            BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOSYS),
                            BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
    const sock_fprog program = {static_cast<unsigned short>(std::size(filter)), filter};
    const bool isRefused = prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
                           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0 &&
                           syscall(SYS_membarrier, 0, 0, 0) != 0;
    if (!isRefused) std::exit(EXIT_FAILURE);
}

void useUpThreadKeys() {
    pthread_key_t key{};
    while (pthread_key_create(&key, nullptr) == 0) {}
}

// Ends the process: with success if a host counts the calls of two threads.
[[noreturn]] void exitAfterCalls() {
    bool areCounted = false;
    {
        const Host host;
        VexaUtilMacroIsBatchModeActive();
        std::thread([] { VexaUtilMacroIsBatchModeActive(); }).join();
        areCounted = host.calls().size() == 2;
    }
    std::exit(areCounted ? EXIT_SUCCESS : EXIT_FAILURE);
}

// Ends the process: with success if the end of a host waits for a call of another thread.
[[noreturn]] void exitAfterACallInProgress() {
    std::atomic<bool> isShown{false};
    std::atomic<bool> isClosed{false};
    auto host = std::make_unique<Host>();
    host->onDialog([&](const std::string&) {
        isShown = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        isClosed = true;
    });
    std::thread caller([] { VexaUtilDialogErrMsg("look"); });
    while (!isShown) std::this_thread::yield();
    host.reset();
    const bool hasWaited = isClosed;
    caller.join();
    std::exit(hasWaited ? EXIT_SUCCESS : EXIT_FAILURE);
}

TEST_F(CallSlots, KeepAHostForACallOnASystemThatCannotFenceThreads) {
    expectSuccessOf([] {
        refuseFences();
        exitAfterACallInProgress();
    });
}

TEST_F(CallSlots, ServeCallsOfAProgramThatHasUsedUpTheKeysOfThreads) {
    expectSuccessOf([] {
        useUpThreadKeys();
        exitAfterCalls();
    });
}

TEST_F(CallSlots, MissACallOfANewThreadWithoutMemory) {
    expectSuccessOf([] {
        const Host host;
        std::thread([] {
            {
                const tests::FailingAllocator failing(0, tests::Failing::EverAfter);
                VexaUtilMacroIsBatchModeActive();
            }
            VexaUtilAuxDataBeginAssign();
        }).join();
        const std::vector<Call> calls = host.calls();
        std::exit(calls.size() == 1 && calls.front().function == std::string("VexaUtilAuxDataBeginAssign")
                      ? EXIT_SUCCESS
                      : EXIT_FAILURE);
    });
}

}  // namespace
}  // namespace vexa::standin
