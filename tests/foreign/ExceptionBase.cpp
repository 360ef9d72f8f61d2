#include "vexa/ExceptionBase.h"

#include "vexa/InvalidArgumentException.h"
#include "vexa/OutOfMemoryException.h"

namespace vexa {

struct ExceptionBase::Impl {
    std::string message;
    std::exception_ptr cause;
};

ExceptionBase::ExceptionBase(const std::string& message, bool /*flag*/)
    : m_impl(std::make_shared<Impl>(Impl{message, std::current_exception()})) {}

ExceptionBase::ExceptionBase(const ExceptionBase& other) = default;

ExceptionBase::~ExceptionBase() = default;

const char* ExceptionBase::what() const { return m_impl->message.c_str(); }

std::exception_ptr ExceptionBase::cause() const { return m_impl->cause; }

const std::string& ExceptionBase::message() const { return m_impl->message; }

void ExceptionBase::printStackTrace() const { printStackTrace(stderr); }

void ExceptionBase::printStackTrace(FILE* stream) const { static_cast<void>(std::fprintf(stream, "%s\n", what())); }

InvalidArgumentException::InvalidArgumentException(const std::string& message, bool flag)
    : ExceptionBase(message, flag) {}

InvalidArgumentException::~InvalidArgumentException() = default;

OutOfMemoryException::OutOfMemoryException(const std::string& message, bool flag) : ExceptionBase(message, flag) {}

OutOfMemoryException::~OutOfMemoryException() = default;

}  // namespace vexa
