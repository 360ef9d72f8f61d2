#include "vexa/ExceptionBase.h"

#include <execinfo.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>
#include <vector>

namespace vexa {
namespace {

constexpr int kMostFrames = 64;
// An exception that was assigned to in its own handler is its own cause, so a chain of causes may be endless.
constexpr int kMostCauses = 64;

// Ignores a failure of the stream, because there is no other place to report it.
void printLine(FILE* stream, const char* label, const char* text) {
    static_cast<void>(std::fprintf(stream, "%s%s\n", label, text));
}

// Prints addresses if there is no memory for the names.
void printFrames(FILE* stream, const std::vector<void*>& frames) {
    const auto count = static_cast<int>(frames.size());
    const std::unique_ptr<char*, decltype(&std::free)> names(backtrace_symbols(frames.data(), count), &std::free);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        if (names) {
            printLine(stream, "    at ", names.get()[i]);
        } else {
            static_cast<void>(std::fprintf(stream, "    at %p\n", frames[i]));
        }
    }
}

// Returns the cause of the cause.
std::exception_ptr printCause(FILE* stream, const std::exception_ptr& cause) {
    constexpr const char* kLabel = "Caused by: ";
    try {
        std::rethrow_exception(cause);
    } catch (const ExceptionBase& exception) {
        printLine(stream, kLabel, exception.what());
        return exception.cause();
    } catch (const std::exception& exception) {
        printLine(stream, kLabel, exception.what());
    } catch (...) {
        printLine(stream, kLabel, "an exception of unknown type");
    }
    return nullptr;
}

}  // namespace

struct ExceptionBase::StackTrace {
    std::vector<void*> frames;
};

// NOLINTNEXTLINE(modernize-pass-by-value): the signature is part of the binary interface.
ExceptionBase::ExceptionBase(const std::string& message, bool captureStackTrace)
    : m_message(message), m_cause(std::current_exception()) {
    if (!captureStackTrace) return;
    // Keep only the caller's frames. The frames above it belong to the construction of this exception.
    std::array<void*, kMostFrames> frames{};
    void** const end = frames.data() + backtrace(frames.data(), kMostFrames);
    void** const caller = std::find(frames.data(), end, __builtin_return_address(0));
    auto stackTrace = std::make_shared<StackTrace>();
    stackTrace->frames.assign(caller == end ? frames.data() : caller, end);
    m_stackTrace = std::move(stackTrace);
}

ExceptionBase::~ExceptionBase() = default;

const char* ExceptionBase::what() const noexcept { return m_message.c_str(); }

std::exception_ptr ExceptionBase::cause() const { return m_cause; }

const std::string& ExceptionBase::message() const { return m_message; }

void ExceptionBase::printStackTrace() const { printStackTrace(stderr); }

void ExceptionBase::printStackTrace(FILE* stream) const {
    printLine(stream, "", what());
    if (m_stackTrace) printFrames(stream, m_stackTrace->frames);
    std::exception_ptr next = cause();
    for (int i = 0; next && i < kMostCauses; ++i) next = printCause(stream, next);
    if (next) printLine(stream, "", "... and more causes");
}

}  // namespace vexa
