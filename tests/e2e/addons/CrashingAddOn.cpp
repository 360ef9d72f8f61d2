// An add-on that crashes or hangs in known lines. A comment `[NAME]` marks the line that a test expects.

#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>

#include "vexa/AddOn.h"

namespace crashing {

constexpr std::uintptr_t kBadAddress = 0x10;

// The compiler must not see through these.
int* volatile badPointer = reinterpret_cast<int*>(kBadAddress);
void (*volatile noFunction)() = nullptr;
volatile int zero = 0;
volatile int dividend = 100;
volatile bool isTrue = true;

__attribute__((noinline)) void writeToBadAddress() {
    *badPointer = 1;  // [segv]
    zero = 0;
}

__attribute__((noinline)) void abortHere() {
    VexaUtilMacroIsBatchModeActive();
    if (isTrue) std::abort();  // [abort]
}

__attribute__((noinline)) void throwHere() {
    if (isTrue) throw std::runtime_error("nobody catches this");  // [throw]
}

// Nothing on the stack of a new thread catches it.
__attribute__((noinline)) void throwUncaught() { std::thread(throwHere).join(); }

__attribute__((noinline)) void divideByZero() {
    zero = dividend / zero;  // [divide]
}

__attribute__((noinline)) void callNothing() {
    noFunction();  // [null-call]
    zero = 0;
}

__attribute__((noinline)) int recurse(int depth) {
    volatile char bytes[64] = {};
    bytes[depth % 64] = 1;
    return isTrue ? recurse(depth + 1) + bytes[0] : 0;  // [overflow]
}

__attribute__((noinline)) void smashStack() {
    volatile char bytes[16];
    std::memset(const_cast<char*>(bytes), 'A', isTrue ? std::size_t{1} << 30 : 1);  // [smash]
    zero = bytes[0];
}

__attribute__((noinline)) void inThread() {
    std::thread([] { writeToBadAddress(); }).join();
}

__attribute__((noinline)) void waitForever() {
    for (;;) pause();  // [hang]
}

__attribute__((noinline)) void spin() {
    while (isTrue) zero = 0;  // [spin]
}

__attribute__((noinline)) void hangTwice() {
    std::thread other(spin);
    waitForever();
    other.join();
}

// The add-on handles the signal itself, and ends the process as it wants.
void handle() {
    signal(SIGSEGV, [](int) { _exit(42); });
    writeToBadAddress();
}

// The add-on goes on after the signal.
void survive() {
    signal(SIGABRT, [](int) {});
    raise(SIGABRT);
    signal(SIGABRT, SIG_DFL);
}

const std::map<std::string, std::function<void()>> ways = {
    {"nothing", [] {}},
    {"segv", writeToBadAddress},
    {"abort", abortHere},
    {"throw", throwUncaught},
    {"divide", divideByZero},
    {"null-call", callNothing},
    {"overflow", [] { zero = recurse(0); }},
    {"smash", smashStack},
    {"thread", inThread},
    {"hang", waitForever},
    {"hang-twice", hangTwice},
    {"handle", handle},
    {"survive", survive},
};

VexaBoolean execute(const char* command, char**) {
    const auto way = ways.find(command);
    if (way == ways.end()) return 0;
    way->second();
    return 1;
}

}  // namespace crashing

const VexaAddOn_s* vexaAddOn(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "CRASHING", "Crashes", crashing::execute, nullptr};
    return &description;
}
