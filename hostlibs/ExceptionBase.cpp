#include "vexa/ExceptionBase.h"

#include <execinfo.h>

#include <array>
#include <cstdlib>
#include <utility>

namespace vexa {
namespace {

constexpr int kMostFrames = 64;
// An exception that was assigned to inside its own handler is its own cause, so a chain may have no end.
constexpr int kMostCauses = 64;

// A stream that takes no text is nothing to report: this is the report.
void printLine(FILE* stream, const char* label, const char* text) {
    static_cast<void>(std::fprintf(stream, "%s%s\n", label, text));
}

// All but the first, which is in the constructor of ExceptionBase. With no memory left to look for names, the
// addresses have to do.
void printFrames(FILE* stream, void* const* frames, int count) {
    const std::unique_ptr<char*, decltype(&std::free)> names(backtrace_symbols(frames, count), &std::free);
    for (int i = 1; i < count; ++i) {
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
    std::array<void*, kMostFrames> frames;
    int count;
};

// NOLINTNEXTLINE(modernize-pass-by-value): by reference, as the class libraries' users compile it.
ExceptionBase::ExceptionBase(const std::string& message, bool captureStackTrace)
    : m_message(message), m_cause(std::current_exception()) {
    if (!captureStackTrace) return;
    auto stackTrace = std::make_shared<StackTrace>();
    stackTrace->count = backtrace(stackTrace->frames.data(), kMostFrames);
    m_stackTrace = std::move(stackTrace);
}

ExceptionBase::~ExceptionBase() = default;

const char* ExceptionBase::what() const noexcept { return m_message.c_str(); }

std::exception_ptr ExceptionBase::cause() const { return m_cause; }

const std::string& ExceptionBase::message() const { return m_message; }

void ExceptionBase::printStackTrace() const { printStackTrace(stderr); }

void ExceptionBase::printStackTrace(FILE* stream) const {
    printLine(stream, "", what());
    if (m_stackTrace) printFrames(stream, m_stackTrace->frames.data(), m_stackTrace->count);
    std::exception_ptr next = cause();
    for (int i = 0; next && i < kMostCauses; ++i) next = printCause(stream, next);
    if (next) printLine(stream, "", "... and more causes");
}

}  // namespace vexa
