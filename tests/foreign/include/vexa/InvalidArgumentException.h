#pragma once

#include <string>

#include "vexa/ExceptionBase.h"

namespace vexa {

class FOREIGN_API InvalidArgumentException : public ExceptionBase {
public:
    explicit InvalidArgumentException(const std::string& message, bool flag = false);
    ~InvalidArgumentException() override;
};

}  // namespace vexa
