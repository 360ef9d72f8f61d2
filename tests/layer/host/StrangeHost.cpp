// A host whose functions do what a host may do and what is hard to watch: they throw, jump, call add-ons and change the
// state of the thread.
//
//     strange-host ADDON COMMAND...   runs the commands, and prints what became of each
//
// `threads COMMAND` runs the command on eight threads at once, `thread COMMAND` on one. The environment variable
// STRANGE_ENTRY names the function that the host asks the add-on for.

#include <dlfcn.h>
#include <unistd.h>

#include <cerrno>
#include <cfenv>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "vexa/AddOn.h"

struct AddOnList_s {};
struct ThreadMutex_s {};

namespace {

AddOnList_s theIdentity;
const VexaAddOn_s* theAddOn = nullptr;
std::jmp_buf theWayBack;

std::string run(const char* command) {
    char* error = nullptr;
    try {
        if (setjmp(theWayBack) != 0) return "left by a jump";
        const bool isDone = theAddOn->execute(command, &error) == 1;
        return isDone ? "done" : "failed: " + std::string(error == nullptr ? "no message" : error);
    } catch (const std::exception& exception) {
        return std::string("left by an exception: ") + exception.what();
    }
}

void runOnThreads(const std::string& command, int count, int rounds) {
    std::vector<std::thread> threads;
    for (int i = 0; i != count; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round != rounds; ++round) {
                char* error = nullptr;
                theAddOn->execute(command.c_str(), &error);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
}

}  // namespace

extern "C" {

VexaBoolean VexaUtilMacroIsBatchModeActive() { return 1; }

// Leaves errno as a host leaves it that has called the C library.
VexaBoolean VexaUtilMacroIsRecordingActive() {
    errno = EDOM;
    return 0;
}

// Changes the state of floating-point numbers.
VexaBoolean VexaUtilStateIsProcessingLayout() {
    std::fesetround(FE_DOWNWARD);
    return 0;
}

void VexaUtilDialogErrMsg(const char* message) {
    const std::string wanted = message;
    if (wanted == "throw") throw std::runtime_error("thrown by the host");
    if (wanted == "jump") std::longjmp(theWayBack, 1);
    if (wanted == "wait") pause();
    if (wanted == "command") {
        char* error = nullptr;
        theAddOn->execute("ask", &error);
    }
}

void VexaUtilLockStart(AddOnList_s*) {}
void VexaUtilLockFinish(AddOnList_s*) {}
ThreadMutex_s* VexaUtilThreadMutexAlloc() { return new ThreadMutex_s; }
void VexaUtilThreadMutexDealloc(ThreadMutex_s** mutex) {
    delete *mutex;
    *mutex = nullptr;
}
char* VexaUtilStringAlloc(int size, const char*) {
    return static_cast<char*>(std::malloc(static_cast<unsigned>(size)));
}

}  // extern "C"

int main(int argc, char** argv) {
    void* const object = argc < 2 ? nullptr : dlopen(argv[1], RTLD_NOW);
    if (object == nullptr) return std::fprintf(stderr, "%s\n", dlerror()), 2;
    const char* const name = std::getenv("STRANGE_ENTRY");
    const auto entry = reinterpret_cast<decltype(&vexaAddOn)>(dlsym(object, name == nullptr ? "vexaAddOn" : name));
    theAddOn = entry(&theIdentity);
    for (int i = 2; i < argc; ++i) {
        std::printf("%s: ", argv[i]);
        std::fflush(stdout);
        if (std::strncmp(argv[i], "threads ", 8) == 0) {
            runOnThreads(argv[i] + 8, 8, 20);
            std::puts("done");
        } else if (std::strncmp(argv[i], "thread ", 7) == 0) {
            runOnThreads(argv[i] + 7, 1, 1);
            std::puts("done");
        } else {
            std::puts(run(argv[i]).c_str());
        }
    }
    if (theAddOn->shutdown != nullptr) theAddOn->shutdown();
    return dlclose(object);
}
