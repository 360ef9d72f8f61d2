#pragma once

#include <array>
#include <vector>

#include "contract/FindingLog.h"
#include "contract/Moment.h"
#include "vexa/VexaUtil.h"

namespace vexa::standin {

/// What begins and ends within one entry, and nests.
enum class Scope_e { Lock, AuxData, Marking, SolutionTime };

/// The scopes open in one entry. Those of different kinds may cross.
class Scopes {
public:
    /// \param identity whose the lock is; null for the other scopes.
    void begin(Scope_e kind, const Moment& now, const AddOnList_s* identity = nullptr);
    /// Parameters as in begin().
    void end(Scope_e kind, const Moment& now, FindingLog& findings, const AddOnList_s* identity = nullptr);
    /// Judges what is open at the end of the entry.
    void endOfEntry(const Moment& now, FindingLog& findings) const;

private:
    struct Open {
        const AddOnList_s* identity;
        Moment since;
    };

    std::array<std::vector<Open>, 4> m_open;  // by kind
};

}  // namespace vexa::standin
