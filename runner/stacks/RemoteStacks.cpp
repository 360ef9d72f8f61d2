#include "stacks/RemoteStacks.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "stacks/OwnCode.h"
#include "stacks/PackedStacks.h"
#include "stacks/Registers.h"
#include "stacks/Symbols.h"
#include "stacks/Unwinder.h"
#include "system/Descriptor.h"

namespace vexa::runner {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kTimeToRead{4};

// ---- In the helper process

Stack unnamed(const CodePlaces& places) {
    Stack frames;
    for (const UnwoundPlace& place : places.places) frames.push_back({"", "", 0, place.object, place.offset});
    return frames;
}

Stack named(const CodePlaces& places, Symbols& symbols) {
    Stack frames;
    for (const UnwoundPlace& place : places.places) {
        if (place.object.empty()) {
            frames.push_back({"", "", 0, "", place.offset});
        } else {
            for (Frame& frame : symbols.framesAt(place.object, place.offset)) frames.push_back(std::move(frame));
        }
    }
    return frames;
}

void send(int descriptor, pid_t thread, const CodePlaces& places, Stack frames) {
    std::string text;
    ThreadStack stack;
    stack.thread = thread;
    stack.frames = std::move(frames);
    stack.leftOut = places.leftOut;
    stack.isCounted = places.isCounted;
    pack(stack, text);
    writeAll(descriptor, text);
}

struct StoppedThread {
    pid_t id;
    std::optional<Registers> registers;
};

// Sends the stacks without names first, because names may take too long. The later stacks replace the earlier ones.
void sendStacks(pid_t process, const Descriptor& memory, const std::vector<StoppedThread>& threads, int descriptor) {
    Unwinder unwinder(process, memory);
    std::vector<CodePlaces> all;
    for (const StoppedThread& thread : threads) {
        all.push_back(thread.registers ? unwinder.placesOf(*thread.registers) : CodePlaces());
        send(descriptor, thread.id, all.back(), unnamed(all.back()));
    }
    Symbols symbols;
    for (std::size_t i = 0; i != threads.size(); ++i) send(descriptor, threads[i].id, all[i], named(all[i], symbols));
}

[[noreturn]] void becomeHelper(pid_t process, const Descriptor& memory, const std::vector<StoppedThread>& threads,
                               int descriptor) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    for (int signal = 1; signal != NSIG; ++signal) ::signal(signal, SIG_DFL);
    sendStacks(process, memory, threads, descriptor);
    _exit(EXIT_SUCCESS);
}

// ---- In this process

std::string readUntil(int descriptor, Clock::time_point end) {
    std::string text;
    for (bool isOpen = true; isOpen;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0) break;
        pollfd polled{descriptor, POLLIN, 0};
        poll(&polled, 1, static_cast<int>(left));
        isOpen = readAvailable(descriptor, text);
    }
    return text;
}

std::string helpersText(pid_t process, const Descriptor& memory, const std::vector<StoppedThread>& threads) {
    Pipe pipe;
    const pid_t helper = fork();
    if (helper == 0) becomeHelper(process, memory, threads, pipe.writer.get());
    if (helper < 0) return "";
    pipe.writer.close();
    std::string text = readUntil(pipe.reader.get(), Clock::now() + kTimeToRead);
    kill(helper, SIGKILL);
    while (waitpid(helper, nullptr, 0) < 0 && errno == EINTR) {}
    return text;
}

void findOwnFrames(ThreadStack& stack, const IsOfAddOn& isOfAddOn) {
    for (std::size_t i = 0; i != stack.frames.size(); ++i) {
        const std::string& object = stack.frames[i].object;
        if (object.empty() || isSharedLibrary(object) || !isOfAddOn(object)) continue;
        if (!stack.hasOwn() || isForeignSource(stack.frames[stack.ownBegin])) stack.ownBegin = i;
        stack.ownEnd = i + 1;
    }
}

}  // namespace

IsOfAddOn isNotLoadedHere() {
    std::set<std::string> loaded;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) loaded.insert(line.substr(std::min(line.find('/'), line.size())));
    constexpr const char* kSystemObject = "[vdso";  // the object that the system adds to each process
    return [loaded](const std::string& object) {
        return object.rfind(kSystemObject, 0) != 0 && loaded.count(object) == 0;
    };
}

std::vector<ThreadStack> stacksOf(pid_t process, const std::vector<pid_t>& threads, const IsOfAddOn& isOfAddOn) {
    std::vector<StoppedThread> stopped;
    std::map<pid_t, ThreadStack> stacks;
    for (const pid_t thread : threads) {
        stopped.push_back({thread, registersOf(thread)});
        stacks[thread].thread = thread;
    }
    // The system lets only the tracer open this file, but lets the helper read it.
    const Descriptor memory(open(("/proc/" + std::to_string(process) + "/mem").c_str(), O_RDONLY | O_CLOEXEC));
    const std::string text = memory.isOpen() ? helpersText(process, memory, stopped) : "";
    for (ThreadStack& stack : unpackedStacks(text)) stacks[stack.thread] = std::move(stack);
    std::vector<ThreadStack> ordered;
    for (const pid_t thread : threads) {
        ordered.push_back(std::move(stacks[thread]));
        ordered.back().isFirst = thread == process;
        findOwnFrames(ordered.back(), isOfAddOn);
    }
    const auto rank = [](const ThreadStack& stack) { return std::pair(!stack.hasOwn(), !stack.isFirst); };
    std::stable_sort(ordered.begin(), ordered.end(), [&](const auto& a, const auto& b) { return rank(a) < rank(b); });
    return ordered;
}

}  // namespace vexa::runner
