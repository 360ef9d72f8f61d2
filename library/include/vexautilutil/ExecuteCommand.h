/// \file
/// Runs one command for the host: no exception escapes, and no error message is lost. This header also includes the
/// base class of processors.
#pragma once

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <exception>
#include <type_traits>
#include <utility>

#include "vexa/ExceptionBase.h"
#include "vexa/VexaUtil.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"

namespace vexa::vexautilutil {

/// The parts of executeCommand(). Do not use them directly.
namespace detail {

/// Stores a copy of \p message in \p errMsg, unless \p errMsg already has a message, because the first failure often
/// causes the later ones. \p errMsg stays null if the host has no memory.
inline void storeErrorMessage(const char* message, char** errMsg) {
    if (*errMsg != nullptr) return;
    const std::size_t length = std::min<std::size_t>(std::strlen(message), INT_MAX - 1);
    char* const text = VexaUtilStringAlloc(static_cast<int>(length + 1), "error message");
    if (text == nullptr) return;
    std::memcpy(text, message, length);
    text[length] = '\0';
    *errMsg = text;
}

/// Stores the message of the exception that is being handled. If the host throws, \p errMsg is unchanged.
inline void reportException(char** errMsg) noexcept {
    try {
        try {
            throw;
        } catch (const ExceptionBase& failure) {  // may not derive from std::exception in the host's own libraries
            storeErrorMessage(failure.what(), errMsg);
        } catch (const std::exception& failure) {
            storeErrorMessage(failure.what(), errMsg);
        } catch (...) {
            storeErrorMessage("Unknown failure", errMsg);
        }
    } catch (...) {
        return;
    }
}

}  // namespace detail

/// Calls \p work and reports its outcome as the `execute` function of an add-on must: no exception escapes.
///
///     VexaBoolean execute(const char* command, char** errMsg) {
///         return vexa::vexautilutil::executeCommand([&] { run(command); }, errMsg);
///     }
///
/// \param work   a callable without arguments. If it returns a value, the value says whether the command succeeded.
///               If it returns nothing, the command succeeded unless \p work throws.
/// \param errMsg receives the error message, and must not be null. If \p work throws, that is a copy of `what()`, or
///               "Unknown failure" if the exception is neither a vexa::ExceptionBase nor a `std::exception`. A message
///               that \p work itself stored before it threw stays. \p errMsg receives null if the command succeeds, if
///               \p work returns false without a message, and if the host has no memory.
/// \return 1 if the command succeeded, otherwise 0. If \p errMsg is null, \p work is not called and the result is 0.
///
/// Ownership: the host owns the message.
/// Threads:   \p work and the host are called on the caller's thread.
template <class Work>
VexaBoolean executeCommand(Work&& work, char** errMsg) noexcept {
    if (errMsg == nullptr) return 0;
    *errMsg = nullptr;
    try {
        if constexpr (std::is_void_v<std::invoke_result_t<Work>>) {
            std::forward<Work>(work)();
            return 1;
        } else {
            return std::forward<Work>(work)() ? 1 : 0;
        }
    } catch (...) {
        detail::reportException(errMsg);
        return 0;
    }
}

/// Lets \p processor process \p command. For an add-on that keeps one processor for all its commands.
///
///     VexaBoolean execute(const char* command, char** errMsg) {
///         return vexa::vexautilutil::executeCommand(*processor, command, errMsg);
///     }
///
/// \param processor its parseCommandString() is called once.
/// \param command   the text of the command, as the host passed it.
/// \param errMsg    receives the message that the processor stored, or the message of an exception. Must not be null.
/// \return 1 if the command succeeded, otherwise 0.
inline VexaBoolean executeCommand(MacroCommandProcessorAbstract& processor, const char* command,
                                  char** errMsg) noexcept {
    return executeCommand([&] { return processor.parseCommandString(command, errMsg); }, errMsg);
}

/// Lets a new \p Processor process \p command. For an add-on whose commands share nothing.
///
///     constexpr VexaAddOn_s kDescription = {VEXA_ADDON_API_VERSION, "HELLO", "Says hello",
///                                           vexa::vexautilutil::executeCommand<HelloProcessor>, nullptr};
///
/// \tparam Processor a class derived from MacroCommandProcessorAbstract, with a default constructor. An exception of
///                   the constructor is reported, too.
/// \param command    the text of the command, as the host passed it.
/// \param errMsg     receives the message that the processor stored, or the message of an exception. Must not be null.
/// \return 1 if the command succeeded, otherwise 0.
template <class Processor>
VexaBoolean executeCommand(const char* command, char** errMsg) noexcept {
    return executeCommand([&] { return Processor().parseCommandString(command, errMsg); }, errMsg);
}

}  // namespace vexa::vexautilutil
