#pragma once

#include "vexastandin/Finding.h"

namespace vexa::runner {

/// "error" or "warning"
inline const char* nameOf(standin::Severity_e severity) {
    return severity == standin::Severity_e::Error ? "error" : "warning";
}

}  // namespace vexa::runner
