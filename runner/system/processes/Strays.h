#pragma once

#include <sys/types.h>

#include <set>

namespace vexa::runner {

/// Processes that add-ons leave behind, also in another group or session. This process becomes the parent of such a
/// process when its own parent ends.
class Strays {
public:
    /// The children that this process has already are none of them.
    Strays();

    /// Kills those there are, and all that they leave behind. To be called while no other child runs.
    void kill() const;

private:
    std::set<pid_t> m_others;
};

}  // namespace vexa::runner
