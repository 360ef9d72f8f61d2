#pragma once

#include <sys/types.h>

#include <set>

namespace vexa::runner {

/// Processes that add-ons leave behind, also in another group or session. When their parent ends, this process becomes
/// their parent.
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
