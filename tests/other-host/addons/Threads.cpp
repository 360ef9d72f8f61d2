// An add-on with the command "CALL N": eight threads make N rounds of four calls that any thread may make.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include "vexa/AddOn.h"

namespace {

constexpr int kThreads = 8;

void makeCalls(long rounds) {
    for (long i = 0; i != rounds; ++i) {
        ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
        VexaUtilThreadMutexLock(mutex);
        VexaUtilThreadMutexUnlock(mutex);
        VexaUtilThreadMutexDealloc(&mutex);
    }
}

VexaBoolean execute(const char* command, char**) {
    constexpr char kCall[] = "CALL ";
    const long rounds = std::atol(command + std::strlen(kCall));
    std::vector<std::thread> threads;
    for (int i = 0; i != kThreads; ++i) threads.emplace_back(makeCalls, rounds);
    for (std::thread& thread : threads) thread.join();
    std::printf("made %ld calls\n", kThreads * rounds * 4);
    return 1;
}

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "THREADS", nullptr, execute, nullptr};
    return &description;
}
