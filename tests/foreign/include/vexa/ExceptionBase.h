#pragma once

#include <cstdio>
#include <exception>
#include <memory>
#include <string>

#include "vexa/Export.h"

namespace vexa {

/// An exception that does not derive from std::exception. It can be copied, because it is thrown, but not assigned.
class FOREIGN_API ExceptionBase {
public:
    ExceptionBase(const std::string& message, bool flag);
    ExceptionBase(const ExceptionBase& other);
    ExceptionBase& operator=(const ExceptionBase&) = delete;
    virtual ~ExceptionBase();

    virtual const char* what() const;
    virtual std::exception_ptr cause() const;
    virtual const std::string& message() const;
    virtual void printStackTrace() const;
    virtual void printStackTrace(FILE* stream) const;

private:
    struct Impl;
    std::shared_ptr<const Impl> m_impl;
};

}  // namespace vexa
