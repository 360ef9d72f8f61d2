#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "contract/FindingLog.h"
#include "contract/Moment.h"

namespace vexa::standin {

/// What a kind of handles is called.
struct HandleKind {
    const char* label;     ///< as calls show it, for example "arglist"
    const char* noun;      ///< for example "an argument list"
    const char* plural;    ///< for example "argument lists"
    const char* leakRule;  ///< the rule that one which is not freed breaks
};

/// The handles of one kind, living and freed. A handle is compared, never looked into.
class HandleLedger {
public:
    explicit HandleLedger(const HandleKind& kind) : m_kind(kind) {}

    /// Enters a handle given out to an add-on, with its number among those of its kind.
    void allocated(const void* handle, std::size_t number, const Moment& now);
    /// Enters a handle that add-ons may use, but that stays the host's.
    void lent(const void* handle, const Moment& now);
    /// Takes back a handle that was lent.
    void takenBack(const void* handle, const Moment& now);

    /// Judges a use of \p handle.
    /// \return whether it is a living one.
    bool checkUse(const void* handle, const Moment& now, FindingLog& findings) const;
    /// Judges a change of \p handle, for which it has to be the add-on's.
    /// \return whether it is the add-on's, and living.
    bool checkChange(const void* handle, const Moment& now, FindingLog& findings) const {
        return checkOwn(handle, now, findings, "use-after-free");
    }
    /// Judges the freeing of \p handle. The rest as in checkChange().
    bool checkFree(const void* handle, const Moment& now, FindingLog& findings) const {
        return checkOwn(handle, now, findings, "double-free");
    }
    /// Enters that \p handle, which lives, is freed.
    void freed(const void* handle, const Moment& now);

    bool isLiving(const void* handle) const { return m_living.count(handle) != 0; }
    bool isFreed(const void* handle) const { return m_freed.count(handle) != 0; }
    /// Where \p handle, which lives, comes from.
    const Moment& originOf(const void* handle) const { return m_living.at(handle).since; }
    /// What \p handle is called, for example "mutex#1".
    std::string labelOf(const void* handle) const;
    /// The living handles that were given out within entries that \p isMeant holds for, by their numbers.
    std::vector<const void*> living(const std::function<bool(const Entry&)>& isMeant) const;
    /// Reports the living handles of \ref living as one leak. Each is reported once.
    void reportLeaks(const std::function<bool(const Entry&)>& isMeant, const Moment& now, FindingLog& findings);

private:
    struct Living {
        std::size_t number;
        Moment since;
        bool isHosts = false;
        bool isReported = false;
    };
    struct Freed {
        std::string label;
        Moment since;
        Moment until;
    };

    std::string labelOf(const Living& living) const;
    // `ruleOfFreed` is the rule that is broken if the handle was freed.
    bool checkOwn(const void* handle, const Moment& now, FindingLog& findings, const char* ruleOfFreed) const;
    void judgeNotLiving(const void* handle, const Moment& now, FindingLog& findings, const char* ruleOfFreed) const;

    HandleKind m_kind;
    std::unordered_map<const void*, Living> m_living;
    std::unordered_map<const void*, Freed> m_freed;
};

}  // namespace vexa::standin
