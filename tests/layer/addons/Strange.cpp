// An add-on that does what is hard to watch. Its commands print what they see of their own state.

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xmmintrin.h>

#include <cerrno>
#include <cfenv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "vexa/AddOn.h"

namespace {

AddOnList_s* theIdentity = nullptr;

// Calls the host before the host calls the add-on.
struct CalledAtLoad {
    CalledAtLoad() { VexaUtilThreadMutexDealloc(&mutex); }
    ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
} theConstructor;

void keepErrno() {
    errno = E2BIG;
    VexaUtilMacroIsBatchModeActive();
    std::printf("%s, ", errno == E2BIG ? "kept" : "changed");
    VexaUtilMacroIsRecordingActive();
    std::printf("%s, ", errno == EDOM ? "the host's" : "lost");
}

// The layer's own arithmetic must neither leave flags nor be rounded or interrupted in the add-on's way. The C library
// shows the state of the old floating-point unit; calculations use the one of _mm_getcsr().
void keepFloatingPoint() {
    std::feclearexcept(FE_ALL_EXCEPT);
    std::fesetround(FE_UPWARD);
    feenableexcept(FE_INEXACT | FE_DIVBYZERO);
    const unsigned state = _mm_getcsr();
    std::vector<ThreadMutex_s*> mutexes(1000);
    for (ThreadMutex_s*& mutex : mutexes) mutex = VexaUtilThreadMutexAlloc();
    for (ThreadMutex_s*& mutex : mutexes) VexaUtilThreadMutexDealloc(&mutex);
    const bool areKept = _mm_getcsr() == state && std::fegetround() == FE_UPWARD &&
                         std::fetestexcept(FE_ALL_EXCEPT) == 0 && fegetexcept() == (FE_INEXACT | FE_DIVBYZERO);
    fedisableexcept(FE_ALL_EXCEPT);
    VexaUtilStateIsProcessingLayout();
    std::printf("%s, %s, ", areKept ? "kept" : "changed", std::fegetround() == FE_DOWNWARD ? "the host's" : "lost");
    std::fesetround(FE_TONEAREST);
}

void keepSignalMask() {
    sigset_t blocked;
    sigset_t now;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR2);
    pthread_sigmask(SIG_SETMASK, &blocked, nullptr);
    VexaUtilLockStart(theIdentity);
    VexaUtilLockFinish(theIdentity);
    pthread_sigmask(SIG_SETMASK, nullptr, &now);
    const bool isKept = sigismember(&now, SIGUSR2) == 1 && sigismember(&now, SIGUSR1) == 0;
    std::printf("%s, ", isKept ? "kept" : "changed");
}

void catchFromHost() {
    try {
        VexaUtilDialogErrMsg("throw");
    } catch (const std::runtime_error& error) {
        std::printf("caught %s, ", error.what());
    }
    VexaUtilMacroIsBatchModeActive();
}

// Signals arrive at any time, also while the layer checks a call.
void callFromSignalHandlers() {
    std::signal(SIGALRM, [](int) { VexaUtilMacroIsBatchModeActive(); });
    const itimerval often{{0, 50}, {0, 50}};
    const itimerval never{{0, 0}, {0, 0}};
    setitimer(ITIMER_REAL, &often, nullptr);
    for (int i = 0; i != 20000; ++i) VexaUtilMacroIsBatchModeActive();
    setitimer(ITIMER_REAL, &never, nullptr);
}

void endThreads() {
    std::thread([] { VexaUtilMacroIsBatchModeActive(); }).join();
    pthread_t waiting{};
    pthread_create(
        &waiting, nullptr, [](void*) { return VexaUtilDialogErrMsg("wait"), static_cast<void*>(nullptr); }, nullptr);
    pthread_cancel(waiting);
    void* result = nullptr;
    pthread_join(waiting, &result);
    std::printf("%s, ", result == PTHREAD_CANCELED ? "cancelled" : "not cancelled");
}

void callInForkedProcess() {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        VexaUtilLockStart(theIdentity);
        std::exit(3);
    }
    int status = 0;
    waitpid(child, &status, 0);
    std::printf("%d, ", WEXITSTATUS(status));
}

void callByAddress() {
    const auto find = [](const char* name) {
        return reinterpret_cast<void (*)(AddOnList_s*)>(dlsym(RTLD_DEFAULT, name));
    };
    find("VexaUtilLockStart")(theIdentity);
    static void (*const volatile finish)(AddOnList_s*) = VexaUtilLockFinish;
    finish(theIdentity);
    void* const library = dlopen("libc.so.6", RTLD_NOW);
    std::printf("%s, ", dlsym(library, "VexaUtilLockStart") == nullptr ? "not in the C library" : "found");
    dlclose(library);
}

// The numbers of closed files are used again.
void closeAll() {
    closefrom(STDERR_FILENO + 1);
    const int nothing = open("/dev/null", O_WRONLY);
    for (int number = 200; number != 210; ++number) dup2(nothing, number);
}

VexaBoolean execute(const char* command, char** errMsg) {
    const std::string wanted = command;
    if (wanted == "ask") VexaUtilMacroIsBatchModeActive();
    if (wanted == "errno") keepErrno();
    if (wanted == "floating-point") keepFloatingPoint();
    if (wanted == "signal-mask") keepSignalMask();
    if (wanted == "catch") catchFromHost();
    if (wanted == "jump") VexaUtilDialogErrMsg("jump");
    if (wanted == "nested") VexaUtilDialogErrMsg("command");
    if (wanted == "throw") throw std::runtime_error("thrown by the add-on");
    if (wanted == "signals") callFromSignalHandlers();
    if (wanted == "end-threads") endThreads();
    if (wanted == "fork") callInForkedProcess();
    if (wanted == "by-address") callByAddress();
    if (wanted == "lock") VexaUtilLockStart(theIdentity);
    if (wanted == "close-all") closeAll();
    if (wanted == "exit-thread") pthread_exit(nullptr);
    if (wanted == "exit") std::exit(5);
    if (wanted == "crash") std::raise(SIGSEGV);
    if (wanted == "load") dlclose(dlopen(LATER_LIBRARY, RTLD_NOW));
    if (wanted != "fail") return 1;
    *errMsg = VexaUtilStringAlloc(10, "error string");
    std::strcpy(*errMsg, "no reason");
    return 0;
}

const VexaAddOn_s kDescription = {VEXA_ADDON_API_VERSION, "STRANGE", "Hard to watch", execute, nullptr};

const VexaAddOn_s* enter(AddOnList_s* self) {
    theIdentity = self;
    return &kDescription;
}

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s* self) { return enter(self); }

// For a host that asks for another name.
extern "C" VEXA_HOST_API const VexaAddOn_s* otherEntry(AddOnList_s* self) { return enter(self); }
