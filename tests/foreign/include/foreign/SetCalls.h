#pragma once

#include "vexa/Export.h"

namespace vexa::foreign {

/// How often each operation of this thread's sets was called. There are no others.
struct SetCalls {
    int constructed = 0;
    int copied = 0;
    int constructedFromHandle = 0;
    int destroyed = 0;
    int cleared = 0;
    int assigned = 0;
    int rendered = 0;
};

/// The calls so far. Assign SetCalls() to count anew.
FOREIGN_API SetCalls& setCalls();

}  // namespace vexa::foreign
