#pragma once

#include <cstdio>
#include <exception>
#include <memory>
#include <string>

#include "vexa/Export.h"

namespace vexa {

/// Base of every exception of the class libraries: a message, and the exception that led to it.
///
///     try {
///         set.assign(text);
///     } catch (const InvalidArgumentException& refusal) {
///         throw MacroCommandError(refusal.what());   // refusal becomes the cause()
///     }
///
/// Ownership: the message and the cause are the exception's own.
/// Threads:   reading is safe from any thread.
class VEXAHOSTLIBS_API ExceptionBase : public std::exception {
public:
    /// Keeps a copy of \p message and, when made inside a `catch` block, the exception being handled.
    /// Allocates nothing for a message of at most 15 characters and without a stack trace.
    /// \param message           the whole diagnostic, fit to show a user.
    /// \param captureStackTrace whether to keep the call stack of the caller, for printStackTrace().
    ExceptionBase(const std::string& message, bool captureStackTrace);
    ExceptionBase(const ExceptionBase&) = default;
    ExceptionBase& operator=(const ExceptionBase&) = default;
    ~ExceptionBase() override;

    /// The message, up to its first NUL character; valid as long as the exception.
    const char* what() const noexcept override;
    /// The exception that was being handled when this one was made; null when there was none.
    virtual std::exception_ptr cause() const;
    /// The message; valid as long as the exception.
    virtual const std::string& message() const;
    /// Prints the message, the stack trace if one was captured, and the chain of causes to `stderr`.
    virtual void printStackTrace() const;
    /// The same, to \p stream, which stays open.
    virtual void printStackTrace(FILE* stream) const;

private:
    struct StackTrace;

    std::string m_message;
    std::exception_ptr m_cause;
    std::shared_ptr<const StackTrace> m_stackTrace;
};

}  // namespace vexa
