#pragma once

#include <string_view>

#include "terminal/Console.h"
#include "vexastandin/Host.h"

namespace vexa::runner {

/// Why a command failed, for the user: the message of the add-on, if it gave one. The text lives as long as \p result.
inline std::string_view failureText(const standin::CommandResult& result) {
    const std::string_view message = withoutTrailingBlanks(result.error);
    return message.empty() ? "the command failed without a message" : message;
}

}  // namespace vexa::runner
