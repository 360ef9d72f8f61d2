#pragma once

#include <string_view>

#include "terminal/Console.h"
#include "vexastandin/Host.h"

namespace vexa::runner {

/// Why a command has failed, as people are told: its message, if it gave one. Lives as long as \p result.
inline std::string_view failureText(const standin::CommandResult& result) {
    const std::string_view message = withoutTrailingBlanks(result.error);
    return message.empty() ? "the command failed without a message" : message;
}

}  // namespace vexa::runner
