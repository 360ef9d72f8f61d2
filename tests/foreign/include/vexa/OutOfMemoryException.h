#pragma once

#include <string>

#include "vexa/ExceptionBase.h"

namespace vexa {

class FOREIGN_API OutOfMemoryException : public ExceptionBase {
public:
    explicit OutOfMemoryException(const std::string& message, bool flag = false);
    ~OutOfMemoryException() override;
};

}  // namespace vexa
