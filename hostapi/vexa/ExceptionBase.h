#pragma once

#include <cstdio>
#include <exception>
#include <memory>
#include <string>

#include "vexa/Export.h"

namespace vexa {

/// Base class of the exceptions of the class libraries. It holds a message and the exception that caused this one.
///
///     try {
///         set.assign(text);
///     } catch (const InvalidArgumentException& refusal) {
///         throw MacroCommandError(refusal.what());   // its cause() is refusal
///     }
///
/// Ownership: an exception holds its own copy of the message, and shares the cause.
/// Threads:   any thread may read an exception.
class VEXAHOSTLIBS_API ExceptionBase : public std::exception {
public:
    /// Copies \p message. Inside a `catch` block it also keeps the exception being handled, as the cause.
    /// It allocates no memory for a message of at most 15 characters without a stack trace.
    /// \param message           the complete diagnostic, as a user should see it.
    /// \param captureStackTrace true to keep the caller's call stack for printStackTrace().
    ExceptionBase(const std::string& message, bool captureStackTrace);
    ExceptionBase(const ExceptionBase&) = default;
    ExceptionBase& operator=(const ExceptionBase&) = default;
    ~ExceptionBase() override;

    /// Returns the message, up to its first NUL character. The text is valid as long as the exception.
    const char* what() const noexcept override;
    /// Returns the exception that was being handled when this one was constructed; null if there was none.
    virtual std::exception_ptr cause() const;
    /// Returns the message. The reference is valid as long as the exception.
    virtual const std::string& message() const;
    /// Prints the message, the stack trace if one was captured, and the chain of causes to `stderr`.
    virtual void printStackTrace() const;
    /// Prints the same to \p stream, and leaves it open.
    virtual void printStackTrace(FILE* stream) const;

private:
    struct StackTrace;

    std::string m_message;
    std::exception_ptr m_cause;
    std::shared_ptr<const StackTrace> m_stackTrace;
};

}  // namespace vexa
