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
#include <vector>

#include "system/files/ElfFile.h"
#include "text/Lines.h"
#include "text/StartsWith.h"

namespace vexa::runner {
namespace {

constexpr int kRounds = 50;
constexpr int kFirstRounds = 10;           // by then, everything that is created only once exists
constexpr std::size_t kBytesAllowed = 64;  // in each round: less than any object, but the loader needs a few bytes

// Resources of the process that grow with a leak.
struct Holdings {
    std::size_t bytes;
    std::size_t mappings;
};

std::vector<std::string> mappings() {
    std::ifstream maps("/proc/self/maps");
    return linesOf({std::istreambuf_iterator<char>(maps), {}});
}

Holdings holdingsNow() {
    const struct mallinfo2 heap = mallinfo2();
    return {heap.uordblks + heap.hblkhd, mappings().size()};
}

bool isMapped(const std::string& path) {
    const std::vector<std::string> lines = mappings();
    return std::any_of(lines.begin(), lines.end(), [end = ' ' + path](const std::string& line) {
        return line.size() >= end.size() && line.compare(line.size() - end.size(), end.size(), end) == 0;
    });
}

long threadsNow() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), std::filesystem::directory_iterator());
}

// The system may list a joined thread for a moment longer.
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
    const auto find = [&](const auto& is) { return std::find_if(file.symbols.begin(), file.symbols.end(), is); };
    std::string reasons;
    const auto add = [&](const std::string& reason) { reasons += "\nseen in the file: " + reason; };
    if (file.isNeverUnloaded) add("it is linked with -z nodelete");
    const auto unique = find([](const ElfSymbol& symbol) { return symbol.isDefined && symbol.isUnique; });
    if (unique != file.symbols.end()) {
        add("the whole process shares its " + demangled(unique->name) +
            ", which keeps the file loaded; compile with -fno-gnu-unique, or export only vexaAddOn by a version "
            "script");
    }
    const auto threadExit =
        find([](const ElfSymbol& symbol) { return startsWith(symbol.name, "__cxa_thread_atexit"); });
    if (threadExit != file.symbols.end()) {
        add("it has thread_local objects with destructors; such an object of a host thread keeps the file loaded until "
            "the thread ends");
    }
    if (reasons.empty()) {
        reasons = "\nthe file does not show why; the add-on or another library may have opened it by dlopen()";
    }
    return "its file is still mapped after it was unloaded: its static state stays, and the host cannot load a new "
           "version before it is restarted" +
           reasons;
}

// Keeps the file mapped as long as this lives, so that a thread that still runs does not crash.
using Hold = std::unique_ptr<void, int (*)(void*)>;

void expectNoThreadLeft(Trial& trial, const std::string& path) {
    trial.nowTrying("the threads after the add-on was shut down");
    const long threads = threadsNow();
    CheckedSession session(trial);
    Hold hold(dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD), dlclose);
    session.end();
    if (staysWithMoreThreads(threads)) {
        (void)hold.release();  // keep the file mapped, because the thread still runs
        throw CaseFailed(
            "a thread of the add-on still runs after the shutdown, in code that the host then unloads; end and "
            "join the thread in the shutdown");
    }
}

void expectNothingLeft(const Holdings& before, const Holdings& after) {
    constexpr std::size_t kRoundsCounted = kRounds - kFirstRounds;
    const std::size_t bytes = after.bytes > before.bytes ? (after.bytes - before.bytes) / kRoundsCounted : 0;
    if (bytes > kBytesAllowed) {
        throw CaseFailed(std::to_string(bytes) +
                         " bytes of memory are lost each time the add-on is loaded and unloaded");
    }
    if (after.mappings >= before.mappings + kRoundsCounted) {
        throw CaseFailed("a mapping of memory or of a file is left each time the add-on is loaded and unloaded");
    }
}

}  // namespace

Verdict load(Trial& trial) {
    trial.nowTrying("the add-on is loaded and unloaded");
    CheckedSession(trial).end();
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
