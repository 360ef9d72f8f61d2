#pragma once

#include "vexa/Export.h"

namespace vexa::foreign {

/// Counts the calls of each operation of this thread's sets. These sets have no other operations.
struct SetCalls {
    int constructed = 0;
    int copied = 0;
    int constructedFromHandle = 0;
    int destroyed = 0;
    int cleared = 0;
    int assigned = 0;
    int rendered = 0;
};

/// Returns the calls so far. Assign SetCalls() to start again.
FOREIGN_API SetCalls& setCalls();

}  // namespace vexa::foreign
