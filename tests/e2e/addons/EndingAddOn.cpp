// An add-on that ends or stops its process, or leaves processes and threads running, in many ways.

#include <dlfcn.h>
#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <functional>
#include <map>
#include <string>
#include <thread>

#include "vexa/AddOn.h"

namespace {

constexpr const char* kId = "ENDING";

std::string theEnd;  // what ends the process at shutdown, or when the add-on is unloaded

[[noreturn]] void hang() {
    for (;;) pause();
}

void blockSignals() {
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_SETMASK, &all, nullptr);
}

void flood(int descriptor) {
    const std::string bytes(65536, 'x');
    for (;;) static_cast<void>(!write(descriptor, bytes.data(), bytes.size()));
}

// A process in a session of its own whose parent is gone, as daemons make themselves.
void leaveProcess() {
    const pid_t child = fork();
    if (child == 0) {
        setsid();
        if (fork() != 0) _exit(0);
        std::FILE* const file = std::fopen("left-process", "w");
        std::fprintf(file, "%d", static_cast<int>(getpid()));
        std::fclose(file);
        for (int descriptor = 0; descriptor != 64; ++descriptor) close(descriptor);
        hang();
    }
    waitpid(child, nullptr, 0);
    while (access("left-process", F_OK) != 0) usleep(1000);
}

void closeAll() {
    for (int descriptor = 3; descriptor != 256; ++descriptor) close(descriptor);
}

// The loader does not unload it from now on, so its destructors run when the process ends.
void stayLoaded() {
    Dl_info info{};
    dladdr(reinterpret_cast<void*>(&stayLoaded), &info);
    dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
}

// The host keeps the code of a thread loaded if the thread has called the host.
void outliveOnThread() {
    static std::atomic<bool> hasCalled;
    std::thread([] {
        for (;; hasCalled = true) VexaUtilMacroIsBatchModeActive();
    }).detach();
    while (!hasCalled) std::this_thread::yield();
}

[[noreturn]] void raiseAndWait(int signal) {
    raise(signal);
    hang();
}

// Declared before `unloaded`, whose destructor uses it.
const std::map<std::string, std::function<void()>> ways = {
    {"nothing", [] {}},
    {"exit0", [] { std::exit(0); }},
    {"exit3", [] { std::exit(3); }},
    {"_exit0", [] { _exit(0); }},
    {"_exit3", [] { _exit(3); }},
    {"quick_exit0", [] { std::quick_exit(0); }},
    {"abort", [] { std::abort(); }},
    {"terminate",
     [] {
         std::set_terminate(std::abort);  // which prints nothing
         std::thread([] { std::terminate(); }).join();
     }},
    {"segv", [] { raiseAndWait(SIGSEGV); }},
    {"kill", [] { raiseAndWait(SIGKILL); }},
    {"term", [] { raiseAndWait(SIGTERM); }},
    {"pipe", [] { raiseAndWait(SIGPIPE); }},
    {"kill-group", [] { kill(0, SIGKILL); }},
    {"exec-true", [] { execl("/bin/true", "true", nullptr); }},
    {"exec-sleep", [] { execl("/bin/sleep", "sleep", "1000", nullptr); }},
    {"copy-goes-on",
     [] {
         if (fork() != 0) _exit(0);
     }},
    {"stop", [] { raise(SIGSTOP); }},
    {"hang", hang},
    {"hang-blocked",
     [] {
         blockSignals();
         hang();
     }},
    {"flood", [] { flood(STDOUT_FILENO); }},
    {"flood-err", [] { flood(STDERR_FILENO); }},
    {"leave-process", leaveProcess},
    {"close-all", closeAll},
    {"stay-loaded", stayLoaded},
    {"thread", outliveOnThread},
    {"fail", [] {}},
};

void record(const char* command) { VexaUtilMacroRecordExtCommand(kId, command); }

// "WAY" now, "record WAY" after it was recorded, "at-shutdown WAY" and "at-unload WAY" then.
VexaBoolean execute(const char* command, char**) {
    std::string way = command;
    const std::size_t blank = way.find(' ');
    if (blank != std::string::npos) {
        const std::string when = way.substr(0, blank);
        if (when != "record") {
            theEnd = way;
            return 1;
        }
        record("nothing");
        way.erase(0, blank + 1);
    }
    VexaUtilMacroIsBatchModeActive();
    const auto found = ways.find(way);
    if (found == ways.end()) return 0;
    found->second();
    return way == "fail" ? 0 : 1;
}

void endAt(const std::string& when) {
    const std::string start = when + ' ';
    if (theEnd.compare(0, start.size(), start) == 0) ways.at(theEnd.substr(start.size()))();
}

void shutdown() { endAt("at-shutdown"); }

// With a destructor that runs when the add-on is unloaded.
struct Unloaded {
    ~Unloaded() { endAt("at-unload"); }
};
const Unloaded unloaded;

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, kId, "Ends", execute, shutdown};
    if (ENDS_IN_ENTRY) std::exit(0);
    return &description;
}
