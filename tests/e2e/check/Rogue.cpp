// An add-on whose commands harm their process.

#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "vexa/AddOn.h"

namespace {

void takeAllMemory() {
    std::vector<std::vector<char>> blocks;
    for (;;) {
        blocks.emplace_back();
        blocks.back().reserve(std::size_t{64} << 20);
    }
}

void leaveProcess() {
    const pid_t id = fork();
    if (id == 0) {
        for (;;) pause();
    }
    std::ofstream("left-process") << id;
}

struct Behaviour {
    const char* command;
    void (*run)();
};

const Behaviour behaviours[] = {
    {"nothing", [] {}},
    {"abort",
     [] {
         VexaUtilMacroIsBatchModeActive();
         std::abort();
     }},
    {"kill", [] { std::raise(SIGKILL); }},
    {"terminate", [] { std::thread([] { throw 1; }).join(); }},
    {"exit", [] { std::exit(0); }},
    {"exit-at-once", [] { _exit(3); }},
    {"hang",
     [] {
         VexaUtilMacroIsBatchModeActive();
         for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
     }},
    {"hang-and-ignore",
     [] {
         std::signal(SIGTERM, SIG_IGN);
         for (;;) pause();
     }},
    {"memory", takeAllMemory},
    {"close-all",
     [] {
         for (int descriptor = 0; descriptor != 1024; ++descriptor) close(descriptor);
     }},
    {"leave-process", leaveProcess},
    {"leave-thread", [] { std::thread([] { std::this_thread::sleep_for(std::chrono::hours(1)); }).detach(); }},
    {"print",
     [] {
         for (int line = 1; line <= 100000; ++line) std::printf("line %d\n", line);
         std::fflush(stdout);
         std::abort();
     }},
    {"read",
     [] {
         if (std::getchar() != EOF) std::abort();
     }},
};

VexaBoolean execute(const char* command, char** errMsg) {
    for (const Behaviour& behaviour : behaviours) {
        if (std::strcmp(command, behaviour.command) == 0) return behaviour.run(), 1;
    }
    const char text[] = "unknown command";
    *errMsg = VexaUtilStringAlloc(sizeof text, "error message");
    if (*errMsg != nullptr) std::memcpy(*errMsg, text, sizeof text);
    return 0;
}

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "ROGUE", nullptr, execute, nullptr};
    return &description;
}
