#pragma once

#include <sys/types.h>

#include <set>

namespace vexa::runner {

/// Finds processes that add-ons left running, even in another group or session. When the parent of such a process ends,
/// this process becomes its parent.
class Strays {
public:
    /// Existing children of this process do not count.
    Strays();

    /// Kills the strays and their children. Call it while no other child runs.
    void kill() const;

private:
    std::set<pid_t> m_others;
};

}  // namespace vexa::runner
