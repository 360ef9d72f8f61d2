// Tests a host that ends while threads call it.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"

namespace vexa::standin {
namespace {

const std::string kOutliving = VEXA_TEST_ADDONS "/outliving.so";
const std::string kUnloadable = VEXA_TEST_ADDONS "/outliving-unloadable.so";  // the same, but linked as others are

// Stops the thread of an add-on, which is still loaded.
void stopOutliving(const std::string& file = kOutliving) {
    void* const object = dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(object, nullptr) << "it is not loaded any more";
    reinterpret_cast<void (*)()>(dlsym(object, "stopOutliving"))();
    dlclose(object);
}

// Unloads an add-on that a host kept loaded for the sake of its thread, so that the next test meets none.
void unloadKept(const std::string& file) {
    void* const object = dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(object, nullptr) << "it is not loaded any more";
    dlclose(object);
    dlclose(object);
}

// Long enough for a thread to get on, and to show that it does not.
void giveTime() { std::this_thread::sleep_for(std::chrono::milliseconds(20)); }

void waitFor(const std::atomic<bool>& flag) {
    while (!flag) std::this_thread::yield();
}

// A host whose dialogs are shown until they are to be closed.
class HostShowingDialogs {
public:
    HostShowingDialogs() {
        m_host.emplace().onDialog([this](const std::string&) {
            m_isShown = true;
            waitFor(m_isToClose);
            giveTime();
            m_isClosed = true;
        });
    }
    void waitUntilShown() const { waitFor(m_isShown); }
    void letClose() { m_isToClose = true; }
    void end() { m_host.reset(); }
    bool isClosed() const { return m_isClosed; }

private:
    std::atomic<bool> m_isShown{false};
    std::atomic<bool> m_isToClose{false};
    std::atomic<bool> m_isClosed{false};
    std::optional<Host> m_host;
};

TEST(EndOfHost, LeavesAThreadThatGoesOnCallingWithoutAHost) {
    for (int i = 0; i < 200; ++i) {
        {
            Host host;
            host.loadAddOn(kOutliving);
            EXPECT_TRUE(host.run("OUTLIVING", "START").accepted);
        }
        EXPECT_EQ(VexaUtilMacroIsBatchModeActive(), 0);
        stopOutliving();
    }
}

TEST(EndOfHost, PassesAThreadThatGoesOnCallingToTheNextHost) {
    auto host = std::make_unique<Host>();
    host->loadAddOn(kOutliving);
    EXPECT_TRUE(host->run("OUTLIVING", "START").accepted);
    for (int i = 0; i < 200; ++i) {
        host = nullptr;
        host = std::make_unique<Host>();
        while (host->calls().empty()) std::this_thread::yield();
    }
    stopOutliving();
}

TEST(EndOfHost, KeepsTheCodeOfAThreadThatGoesOnCalling) {
    {
        Host host;
        host.loadAddOn(kUnloadable);
        EXPECT_TRUE(host.run("OUTLIVING", "START").accepted);
    }
    giveTime();
    stopOutliving(kUnloadable);
    unloadKept(kUnloadable);
}

TEST(EndOfHost, UnloadsTheCodeOfAThreadThatHasEnded) {
    {
        Host host;
        host.loadAddOn(kUnloadable);
        EXPECT_TRUE(host.run("OUTLIVING", "START").accepted);
        stopOutliving(kUnloadable);
    }
    EXPECT_EQ(dlopen(kUnloadable.c_str(), RTLD_NOW | RTLD_NOLOAD), nullptr);
}

TEST(EndOfHost, WaitsForADialogThatIsShown) {
    HostShowingDialogs host;
    std::thread caller([] { VexaUtilDialogErrMsg("look"); });
    host.waitUntilShown();
    host.letClose();
    host.end();
    EXPECT_TRUE(host.isClosed());
    caller.join();
}

TEST(EndOfHost, DoesNotWaitForCallsOfAnotherHost) {
    HostShowingDialogs outer;
    std::thread caller([&] { VexaUtilDialogErrMsg("look"); });
    outer.waitUntilShown();
    HostShowingDialogs inner;
    std::atomic<bool> hasCalledInner{false};
    outer.letClose();
    std::thread innerCaller([&] {
        VexaUtilDialogErrMsg("look");
        hasCalledInner = true;
    });
    inner.waitUntilShown();
    outer.end();
    EXPECT_TRUE(outer.isClosed());
    EXPECT_FALSE(hasCalledInner);  // the call of the other host is none of its business
    inner.letClose();
    innerCaller.join();
    caller.join();
}

TEST(EndOfHost, WaitsForACallWithinWhichAnotherHostIsCalled) {
    std::atomic<bool> isInside{false};
    std::atomic<bool> isToReturn{false};
    std::atomic<bool> isOver{false};
    auto outer = std::make_unique<Host>();
    outer->onDialog([&](const std::string&) {
        {
            const Host inner;
            VexaUtilMacroIsBatchModeActive();
        }
        isInside = true;
        waitFor(isToReturn);
        giveTime();
        isOver = true;
    });
    std::thread caller([] { VexaUtilDialogErrMsg("look"); });
    waitFor(isInside);
    isToReturn = true;
    outer = nullptr;
    EXPECT_TRUE(isOver);
    caller.join();
}

TEST(EndOfHost, LetsGoOnWhoWaitsForAMutex) {
    auto host = std::make_unique<Host>();
    ThreadMutex_s* const mutex = VexaUtilThreadMutexAlloc();
    VexaUtilThreadMutexLock(mutex);
    std::atomic<bool> isWaiting{false};
    std::thread waiter([&] {
        isWaiting = true;
        VexaUtilThreadMutexLock(mutex);
    });
    waitFor(isWaiting);
    giveTime();
    host = nullptr;
    waiter.join();
}

TEST(EndOfHost, LetsGoOnWhoWaitsForTheLock) {
    auto host = std::make_unique<Host>();
    VexaUtilLockStart(nullptr);
    std::atomic<bool> isWaiting{false};
    std::thread waiter([&] {
        isWaiting = true;
        VexaUtilLockStart(nullptr);
    });
    waitFor(isWaiting);
    giveTime();
    host = nullptr;
    waiter.join();
}

TEST(EndOfHost, DoesNotWaitInAChildForThreadsOfTheParent) {
    auto host = std::make_unique<HostShowingDialogs>();
    std::thread caller([] { VexaUtilDialogErrMsg("look"); });
    host->waitUntilShown();
    const pid_t child = fork();
    if (child == 0) {
        alarm(20);
        host->end();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    host->letClose();
    caller.join();
}

struct CallAtEnd {
    ~CallAtEnd() { VexaUtilMacroIsBatchModeActive(); }
};

TEST(EndOfHost, HearsThreadsThatCallWhileTheyEnd) {
    Host host;
    for (int i = 0; i < 3; ++i) {
        std::thread([] {
            thread_local const CallAtEnd atEnd;
            VexaUtilMacroIsRecordingActive();
            static_cast<void>(atEnd);
        }).join();
    }
    EXPECT_EQ(host.calls().size(), 6u);
}

}  // namespace
}  // namespace vexa::standin
