#pragma once

#include <string>
#include <vector>

#include "vexastandin/Host.h"

namespace vexa::standin {

/// The calls \p host saw, a line each: `Function(arguments)`, and ` = result` where there is one.
inline std::vector<std::string> traceOf(const Host& host) {
    std::vector<std::string> lines;
    for (const Call& call : host.calls()) {
        lines.push_back(call.function + '(' + call.arguments + ')' + (call.result.empty() ? "" : " = " + call.result));
    }
    return lines;
}

using Lines = std::vector<std::string>;

}  // namespace vexa::standin
