#pragma once

#include <stdexcept>
#include <string>
#include <variant>

namespace vexa::probe {

/// A question that has no answer now. The message is the reason.
struct Unanswerable : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Why a question has no answer.
struct NoAnswer {
    std::string reason;
};

/// What a host answers to a question.
using Answer = std::variant<NoAnswer, bool, long, std::string>;

}  // namespace vexa::probe
