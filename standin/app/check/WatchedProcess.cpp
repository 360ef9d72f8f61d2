#include "check/WatchedProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <new>
#include <string_view>

#include "ChildProcess.h"
#include "Descriptor.h"
#include "LastError.h"

namespace vexa::runner {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kLookInterval(20);
constexpr milliseconds kTimeWithoutAddOn = std::chrono::minutes(1);  // for what a test does itself
constexpr milliseconds kTimeToLeave = std::chrono::seconds(5);       // from the verdict to the end of the process
constexpr std::size_t kOutputKept = 4096;
constexpr std::uint64_t kFrameBegin = 0x7665786163686b31;
constexpr std::uint64_t kFrameEnd = ~kFrameBegin;
constexpr rlim_t kMemory = rlim_t{4} << 30;
constexpr rlim_t kSanitizersMemory = rlim_t{1} << 40;  // they reserve more addresses than any program needs

// A verdict in transit. It counts when it is whole.
struct FrameHead {
    std::uint64_t begin;
    std::uint64_t outcome;
    std::uint64_t reasonSize;
    std::uint64_t macroSize;
};

std::string_view bytesOf(const FrameHead& head) { return {reinterpret_cast<const char*>(&head), sizeof head}; }

std::string framed(const Verdict& verdict) {
    const FrameHead head = {kFrameBegin, static_cast<std::uint64_t>(verdict.outcome), verdict.reason.size(),
                            verdict.macro.size()};
    const std::string_view end(reinterpret_cast<const char*>(&kFrameEnd), sizeof kFrameEnd);
    return std::string(bytesOf(head)) + verdict.reason + verdict.macro + std::string(end);
}

std::optional<Verdict> unframed(const std::string& bytes) {
    FrameHead head{};
    if (bytes.size() < sizeof head + sizeof kFrameEnd) return std::nullopt;
    std::memcpy(&head, bytes.data(), sizeof head);
    const std::size_t texts = bytes.size() - sizeof head - sizeof kFrameEnd;
    std::uint64_t end = 0;
    std::memcpy(&end, bytes.data() + sizeof head + texts, sizeof end);
    const bool isWhole = head.begin == kFrameBegin && end == kFrameEnd && head.reasonSize <= texts &&
                         head.macroSize == texts - head.reasonSize &&
                         head.outcome <= static_cast<std::uint64_t>(Outcome_e::TimedOut);
    if (!isWhole) return std::nullopt;
    return Verdict{static_cast<Outcome_e>(head.outcome), bytes.substr(sizeof head, head.reasonSize),
                   bytes.substr(sizeof head + head.reasonSize, head.macroSize)};
}

// One end of a pipe.
class End {
public:
    explicit End(int descriptor = -1) : m_descriptor(descriptor) {}
    End(const End&) = delete;
    End& operator=(const End&) = delete;
    ~End() { shut(); }

    int descriptor() const { return m_descriptor; }
    void open(int descriptor) { m_descriptor = descriptor; }
    void shut() {
        if (m_descriptor >= 0) close(m_descriptor);
        m_descriptor = -1;
    }

private:
    int m_descriptor;
};

struct Pipe {
    Pipe() {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) throwLastError("no pipe");
        in.open(ends[0]);
        out.open(ends[1]);
        fcntl(ends[0], F_SETFL, O_NONBLOCK);
    }
    End in;
    End out;
};

// ---- In the process

BlackBox* boxOfThisProcess = nullptr;  // a new-handler is given nothing

[[noreturn]] void noteWantOfMemory() {
    boxOfThisProcess->wantedMemory = true;
    throw std::bad_alloc();
}

rlim_t addressesUsed() {
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

void limitResources() {
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    const rlim_t used = addressesUsed();
    rlimit memory{};
    if (used > kSanitizersMemory || getrlimit(RLIMIT_AS, &memory) != 0) return;
    memory.rlim_cur = std::min(memory.rlim_max, used + kMemory);
    setrlimit(RLIMIT_AS, &memory);
}

// Leaves without what belongs to the whole program: it is run by the process that watches.
[[noreturn]] void tellVerdict(BlackBox& box, int verdicts, const std::function<Verdict()>& work) {
    limitResources();
    boxOfThisProcess = &box;
    std::set_new_handler(noteWantOfMemory);
    const bool told = writeAll(verdicts, framed(work()));
    std::fflush(nullptr);
    _exit(told ? EXIT_SUCCESS : EXIT_FAILURE);
}

// ---- In the process that watches

// What comes out of a pipe.
class Drain {
public:
    Drain(int descriptor, std::size_t most) : m_descriptor(descriptor), m_most(most) {}

    // Takes what is there. Returns whether the pipe is still open.
    bool take() {
        std::array<char, 4096> bytes;
        for (;;) {
            const ssize_t count = read(m_descriptor, bytes.data(), bytes.size());
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) return count != 0;
            m_taken.append(bytes.data(), static_cast<std::size_t>(count));
            if (m_taken.size() > 2 * m_most) m_taken.erase(0, m_taken.size() - m_most);
        }
    }
    const std::string& taken() const { return m_taken; }

private:
    int m_descriptor;
    std::size_t m_most;
    std::string m_taken;
};

bool isHanging(const BlackBox& box, milliseconds timeout) {
    return box.sinceChange() > (box.isInAddOn ? timeout : std::max(timeout, kTimeWithoutAddOn));
}

ProcessEnd watch(ChildProcess& child, const BlackBox& box, milliseconds timeout, int verdicts, int output) {
    ProcessEnd end;
    Drain verdict(verdicts, std::string().max_size() / 4);
    Drain printed(output, kOutputKept);
    std::array<pollfd, 2> ends = {pollfd{verdicts, POLLIN, 0}, pollfd{output, POLLIN, 0}};
    auto told = BlackBox::Clock::time_point::max();
    bool isKilled = false;
    while (!child.hasEnded()) {
        poll(ends.data(), ends.size(), static_cast<int>(kLookInterval.count()));
        // A closed pipe would wake us without a pause.
        if (!verdict.take()) ends[0].fd = -1;
        if (!printed.take()) ends[1].fd = -1;
        const auto now = BlackBox::Clock::now();
        if (told == BlackBox::Clock::time_point::max() && unframed(verdict.taken())) told = now;
        const bool isTold = told != BlackBox::Clock::time_point::max();
        const bool isLate = isTold ? now - told > kTimeToLeave : isHanging(box, timeout);
        if (isLate && !isKilled) {
            child.kill();
            isKilled = true;
        }
    }
    verdict.take();
    printed.take();
    end.verdict = unframed(verdict.taken());
    end.timedOut = isKilled;
    end.waitStatus = child.reap();
    end.output = printed.taken();
    return end;
}

}  // namespace

ProcessEnd runWatched(BlackBox& box, milliseconds timeout, const std::function<Verdict()>& work) {
    Pipe verdicts;
    Pipe output;
    const int printed = output.out.descriptor();
    ChildProcess child({printed, printed}, [&]() -> int { tellVerdict(box, verdicts.out.descriptor(), work); });
    verdicts.out.shut();
    output.out.shut();
    return watch(child, box, timeout, verdicts.in.descriptor(), output.in.descriptor());
}

}  // namespace vexa::runner
