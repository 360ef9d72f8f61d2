#include "commands/check/tests/Tests.h"

#include <dlfcn.h>
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <thread>

#include "system/files/ElfFile.h"

namespace vexa::runner {
namespace {

constexpr int kRounds = 50;
constexpr int kFirstRounds = 10;           // until all that is made once is made
constexpr std::size_t kBytesAllowed = 64;  // a round: no object of anybody's, but the loader's own small change

// What the process has that a leak makes more of.
struct Holdings {
    std::size_t bytes;
    std::size_t mappings;
};

std::size_t mappingsNow() {
    std::ifstream maps("/proc/self/maps");
    std::string line;
    std::size_t count = 0;
    while (std::getline(maps, line)) ++count;
    return count;
}

Holdings holdingsNow() {
    const struct mallinfo2 heap = mallinfo2();
    return {heap.uordblks + heap.hblkhd, mappingsNow()};
}

bool isMapped(const std::string& path) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        const bool isOfFile =
            line.size() > path.size() && line.compare(line.size() - path.size(), path.size(), path) == 0;
        if (isOfFile && line[line.size() - path.size() - 1] == ' ') return true;
    }
    return false;
}

long threadsNow() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), std::filesystem::directory_iterator());
}

// A thread that was joined may be listed a moment longer.
bool staysWithMoreThreads(long than) {
    constexpr auto kPatience = std::chrono::seconds(2);
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (threadsNow() > than && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return threadsNow() > than;
}

std::string whyStillMapped(const std::string& path) {
    const ElfFile file = readElfFile(path);
    const auto findSymbol = [&](const auto& is) { return std::find_if(file.symbols.begin(), file.symbols.end(), is); };
    std::string lines =
        "its file is still mapped after it was unloaded: its static state stays, and a new version of it is not taken "
        "before the host ends";
    bool isKnown = false;
    const auto add = [&](const std::string& reason) {
        lines += "\nseen in the file: " + reason;
        isKnown = true;
    };
    if (file.isNeverUnloaded) add("it is linked with -z nodelete");
    const auto unique = findSymbol([](const ElfSymbol& symbol) { return symbol.isDefined && symbol.isUnique; });
    if (unique != file.symbols.end()) {
        add("the whole process shares its " + demangled(unique->name) +
            ", which pins it; compile with -fno-gnu-unique, or export vexaAddOn alone by a version script");
    }
    const auto threadExit =
        findSymbol([](const ElfSymbol& symbol) { return symbol.name.find("__cxa_thread_atexit") == 0; });
    if (threadExit != file.symbols.end()) {
        add("it has thread_local objects with destructors; one of the host's own thread pins it until that ends");
    }
    if (!isKnown)
        lines += "\nnothing in the file tells why; it may have opened itself by dlopen(), or another library did";
    return lines;
}

// Keeps the file mapped while it lives, so that a thread that was left behind does not crash.
using Hold = std::unique_ptr<void, int (*)(void*)>;

void expectNoThreadLeft(Trial& trial, const std::string& path) {
    trial.nowTrying("the threads after the add-on was shut down");
    const long threads = threadsNow();
    CheckedSession session(trial);
    Hold hold(dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD), dlclose);
    session.end();
    if (staysWithMoreThreads(threads)) {
        (void)hold.release();  // the thread goes on
        throw CaseFailed(
            "a thread of the add-on still runs after its shutdown, in code that is unloaded then; end and "
            "join it in the shutdown");
    }
}

void expectNothingLeft(const Holdings& before, const Holdings& after) {
    constexpr std::size_t kRoundsCounted = kRounds - kFirstRounds;
    const std::size_t bytes = after.bytes > before.bytes ? (after.bytes - before.bytes) / kRoundsCounted : 0;
    if (bytes > kBytesAllowed) {
        throw CaseFailed(std::to_string(bytes) + " bytes of memory are lost each time that it is loaded and unloaded");
    }
    if (after.mappings >= before.mappings + kRoundsCounted) {
        throw CaseFailed("a mapping of memory, or of a file, is left each time that it is loaded and unloaded");
    }
}

}  // namespace

Verdict load(Trial& trial) {
    trial.nowTrying("the add-on is loaded and unloaded");
    CheckedSession session(trial);
    session.end();
    return {};
}

Verdict loadAndUnload(Trial& trial) {
    const std::string path = std::filesystem::canonical(trial.subject().addOn());
    expectNoThreadLeft(trial, path);
    Holdings before{};
    for (int round = 1; round <= kRounds; ++round) {
        trial.nowTrying("round " + std::to_string(round) + " of loading and unloading");
        CheckedSession(trial).end();
        if (isMapped(path)) throw CaseFailed(whyStillMapped(path));
        if (round == kFirstRounds) before = holdingsNow();
    }
    expectNothingLeft(before, holdingsNow());
    return {};
}

}  // namespace vexa::runner
