#include "commands/test/AllocationCounter.h"

#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <mutex>
#include <new>
#include <unordered_map>
#include <utility>
#include <vector>

#include "system/LastError.h"
#include "system/files/ProgramFiles.h"
#include "system/files/WholeFile.h"
#include "system/processes/AllocationHooks.h"
#include "system/processes/ExecArguments.h"
#include "terminal/Terminal.h"
#include "text/StartsWith.h"
#include "vexastandin/Host.h"

namespace vexa::runner {
namespace {

constexpr const char* kPreload = "LD_PRELOAD";

// ---- Counting

struct Counted {
    AllocationCount count;
    std::size_t bytes = 0;  // now
    std::unordered_map<const void*, std::size_t> blocks;
};

// Global, because malloc() gets no argument for an object. Threads that release memory may still be in a hook when the
// counter is gone.
std::mutex theGuard;
Counted* theCounted = nullptr;

// True while a hook runs on this thread, because the hooks allocate memory themselves.
thread_local bool isInHook = false;

class TimeInHook : NonCopyable {
public:
    TimeInHook() { isInHook = true; }
    ~TimeInHook() { isInHook = false; }
};

void addBlock(const void* block, std::size_t size) {
    if (isInHook || !standin::Host::isInAddOn()) return;
    const TimeInHook time;
    const std::lock_guard<std::mutex> lock(theGuard);
    if (theCounted == nullptr) return;
    ++theCounted->count.allocations;
    try {
        theCounted->blocks[block] = size;
    } catch (const std::bad_alloc&) {
        return;
    }
    theCounted->bytes += size;
    theCounted->count.peakBytes = std::max(theCounted->count.peakBytes, theCounted->bytes);
}

void removeBlock(const void* block) {
    if (isInHook) return;
    const TimeInHook time;
    const std::lock_guard<std::mutex> lock(theGuard);
    if (theCounted == nullptr) return;
    const auto found = theCounted->blocks.find(block);
    if (found == theCounted->blocks.end()) return;
    theCounted->bytes -= found->second;
    theCounted->blocks.erase(found);
}

constexpr AllocationHooks kHooks = {[](void* block, std::size_t size) { addBlock(block, size); },
                                    [](void* block) { removeBlock(block); }};

// An add-on may fork while another thread is in a hook.
void keepUsableInForks() {
    const auto leave = [] {
        theGuard.unlock();
        isInHook = false;
    };
    const auto enter = [] {
        isInHook = true;
        theGuard.lock();
    };
    pthread_atfork(enter, leave, leave);
}

// ---- The library

AllocationHooksVariable* hooksOfLibrary() {
    return static_cast<AllocationHooksVariable*>(dlsym(RTLD_DEFAULT, kAllocationHooksVariable));
}

bool isSanitized() {
    const char* const functions[] = {"__asan_init", "__tsan_init", "__msan_init", "__hwasan_init"};
    return std::any_of(std::begin(functions), std::end(functions),
                       [](const char* function) { return dlsym(RTLD_DEFAULT, function) != nullptr; });
}

// The programs that add-ons start do not need the library.
void hideLibrary(const std::string& library) {
    const std::string all(environment(kPreload));
    if (!startsWith(all, library)) return;
    const std::string others = all.substr(std::min(library.size() + 1, all.size()));
    if (others.empty()) {
        unsetenv(kPreload);
    } else {
        setenv(kPreload, others.c_str(), 1);
    }
}

std::vector<std::string> ownArguments() {
    const std::string all = readWholeFile("/proc/self/cmdline");
    std::vector<std::string> arguments;
    for (std::size_t at = 0; at < all.size(); at += arguments.back().size() + 1)
        arguments.emplace_back(all.c_str() + at);
    return arguments;
}

[[noreturn]] void restartWith(const std::string& library) {
    const std::string_view others = environment(kPreload);
    setenv(kPreload, (library + (others.empty() ? "" : ":") + std::string(others)).c_str(), 1);
    const std::vector<std::string> arguments = ownArguments();
    execv("/proc/self/exe", execArguments(arguments).data());
    throwLastError("cannot start the program again to count allocations");
}

}  // namespace

AllocationCounter::AllocationCounter() {
    static const bool isPrepared = [] {
        keepUsableInForks();
        if (AllocationHooksVariable* const hooks = hooksOfLibrary()) *hooks = &kHooks;
        return true;
    }();
    static_cast<void>(isPrepared);
    auto counted = std::make_unique<Counted>();
    const TimeInHook time;
    const std::lock_guard<std::mutex> lock(theGuard);
    theCounted = counted.release();
}

AllocationCounter::~AllocationCounter() {
    const TimeInHook time;
    std::unique_ptr<Counted> counted;
    const std::lock_guard<std::mutex> lock(theGuard);
    counted.reset(std::exchange(theCounted, nullptr));
}

AllocationCount AllocationCounter::count() {
    const TimeInHook time;
    const std::lock_guard<std::mutex> lock(theGuard);
    return theCounted->count;
}

std::string prepareToCountAllocations() {
    const std::string library = fileBesideProgram({"preload/libvexaallocations.so", VEXA_INSTALLED_ALLOCATIONS});
    if (isSanitized()) return "a sanitizer has an allocator of its own, whose allocations cannot be counted";
    if (library.empty()) return "libvexaallocations.so is not installed with this program";
    if (hooksOfLibrary() == nullptr) {
        if (startsWith(environment(kPreload), library)) return "the system's loader did not load " + library;
        restartWith(library);
    }
    hideLibrary(library);
    return "";
}

}  // namespace vexa::runner
