#pragma once

#include <array>
#include <vector>

#include "contract/FindingLog.h"
#include "contract/Moment.h"
#include "vexa/VexaUtil.h"

namespace vexa::standin {

/// The scopes that begin and end within one entry, and may nest.
enum class Scope_e { Lock, AuxData, Marking, SolutionTime };

/// The scopes that are open in one entry. Scopes of different kinds may overlap.
class Scopes {
public:
    /// \param identity for a lock, the add-on that takes it; null for the other scopes.
    void begin(Scope_e kind, const Moment& now, const AddOnList_s* identity = nullptr);
    /// Parameters as in begin().
    void end(Scope_e kind, const Moment& now, FindingLog& findings, const AddOnList_s* identity = nullptr);
    /// Reports the scopes that are open at the end of the entry.
    void endOfEntry(const Moment& now, FindingLog& findings) const;

private:
    struct Open {
        const AddOnList_s* identity;
        Moment since;
    };

    std::array<std::vector<Open>, 4> m_open;  // indexed by kind
};

}  // namespace vexa::standin
