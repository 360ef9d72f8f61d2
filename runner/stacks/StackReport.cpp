#include "stacks/StackReport.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>

#include "stacks/PackedStacks.h"
#include "stacks/StackText.h"
#include "text/Lines.h"
#include "text/WholeNumber.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kShownFrames = 16;
constexpr char kFieldEnd = '\0';
constexpr const char* kIndentation = "    ";
constexpr const char* kFrameIndentation = "           ";
constexpr const char* kLineHint = "Compile the add-on with -g to see the lines of its source.";

struct Cause {
    int signal;
    int code;
    const char* text;
};

constexpr Cause kCauses[] = {
    {SIGSEGV, SEGV_MAPERR, "nothing is mapped there"},
    {SIGSEGV, SEGV_ACCERR, "the memory there does not permit the access"},
    {SIGBUS, BUS_ADRERR, "the mapped file has no such byte"},
    {SIGBUS, BUS_ADRALN, "it is not aligned"},
    {SIGFPE, FPE_INTDIV, "an integer was divided by zero"},
    {SIGFPE, FPE_INTOVF, "an integer was too large"},
    {SIGILL, ILL_ILLOPC, "the machine does not know the instruction"},
    {SIGILL, ILL_ILLOPN, "the machine does not know the instruction"},
};

bool hasAddress(const siginfo_t& signal) {
    const auto faults = {SIGSEGV, SIGBUS, SIGFPE, SIGILL};
    const bool isFault = std::find(faults.begin(), faults.end(), signal.si_signo) != faults.end();
    return isFault && signal.si_code > 0 && signal.si_code != SI_KERNEL;
}

std::string framesText(const Stack& frames, const char* indentation) {
    std::string lines;
    for (const std::string& line : linesOf(textOf(frames))) lines += indentation + line + '\n';
    return lines;
}

std::string countText(const ThreadStack& stack, std::size_t shown) {
    const std::size_t count = stack.frames.size() - shown + stack.leftOut;
    if (count == 0) return "";
    return std::string(kFrameIndentation) + (stack.isCounted ? "and " : "and more than ") + std::to_string(count) +
           " more\n";
}

std::string titleOf(const ThreadStack& stack) {
    return stack.isFirst ? "stack:" : "stack of thread " + std::to_string(stack.thread) + ':';
}

std::string stackText(const ThreadStack& stack, bool isWhole) {
    const std::size_t end = stack.hasOwn() ? stack.ownEnd : stack.frames.size();
    const std::size_t shown = isWhole ? stack.frames.size() : std::min(end, kShownFrames);
    const Stack frames(stack.frames.begin(), stack.frames.begin() + static_cast<std::ptrdiff_t>(shown));
    std::string lines = kIndentation + titleOf(stack) + '\n';
    lines += framesText(frames, kFrameIndentation) + countText(stack, shown);
    return lines;
}

std::string threadsText(const StackReport& report) {
    std::string lines;
    std::size_t hidden = 0;
    for (const ThreadStack& stack : report.threads) {
        const bool isShown = report.isWhole || stack.hasOwn() || &stack == &report.threads.front();
        if (isShown) lines += stackText(stack, report.isWhole);
        hidden += isShown ? 0 : 1;
    }
    if (hidden == 0) return lines;
    return lines + kIndentation + std::to_string(hidden) + (hidden == 1 ? " more thread runs" : " more threads run") +
           " no code of an add-on\n";
}

std::string take(std::string_view& text) {
    const std::size_t end = std::min(text.find(kFieldEnd), text.size());
    std::string field(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    return field;
}

}  // namespace

const Frame* StackReport::ownFrame() const {
    if (threads.empty() || !threads.front().hasOwn()) return nullptr;
    return &threads.front().frames[threads.front().ownBegin];
}

std::string faultText(const siginfo_t& signal) {
    if (!hasAddress(signal)) return "";
    std::array<char, 32> address{};
    std::snprintf(address.data(), address.size(), "address %#zx", reinterpret_cast<std::size_t>(signal.si_addr));
    std::string text = address.data();
    for (const Cause& cause : kCauses) {
        if (cause.signal == signal.si_signo && cause.code == signal.si_code) text += std::string(": ") + cause.text;
    }
    return text;
}

std::string textOf(const StackReport& report) {
    std::string lines;
    const auto add = [&](const char* label, const std::string& text) { lines += kIndentation + (label + text) + '\n'; };
    const Frame* const own = report.ownFrame();
    if (own != nullptr) add("at:    ", textOf(*own));
    if (!report.fault.empty()) add("fault: ", report.fault);
    if (!report.problem.empty()) add("stack: ", "unknown: " + report.problem);
    lines += threadsText(report);
    if (own != nullptr && own->line == 0) add("hint:  ", kLineHint);
    return lines;
}

std::string packed(const StackReport& report) {
    std::string text = std::to_string(report.signal) + kFieldEnd + report.fault + kFieldEnd + report.problem +
                       kFieldEnd + (report.isWhole ? "w" : "") + kFieldEnd;
    for (const ThreadStack& stack : report.threads) pack(stack, text);
    return text;
}

StackReport unpackedReport(std::string_view text) {
    StackReport report;
    report.signal = static_cast<int>(wholeNumberIn(take(text)).value_or(0));
    report.fault = take(text);
    report.problem = take(text);
    report.isWhole = !take(text).empty();
    report.threads = unpackedStacks(text);
    return report;
}

}  // namespace vexa::runner
