#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "contract/FindingLog.h"
#include "contract/Moment.h"

namespace vexa::standin {

/// The names for a kind of handles.
struct HandleKind {
    const char* label;     ///< as calls show it, for example "arglist"
    const char* noun;      ///< for example "an argument list"
    const char* plural;    ///< for example "argument lists"
    const char* leakRule;  ///< the rule that is broken if one is not freed
};

/// The handles of one kind, living and freed. It compares handles and never follows them.
class HandleLedger {
public:
    explicit HandleLedger(const HandleKind& kind) : m_kind(kind) {}

    /// Enters a handle that an add-on got. \p number says which of its kind it is, counted from 1.
    void allocated(const void* handle, std::size_t number, const Moment& now);
    /// Enters a handle that add-ons may use, but not change or free.
    void lent(const void* handle, const Moment& now);
    /// Ends the use of a handle that was lent.
    void takenBack(const void* handle, const Moment& now);

    /// Reports \p handle if it is not a living one.
    /// \return whether it is a living one.
    bool checkUse(const void* handle, const Moment& now, FindingLog& findings) const;
    /// Reports \p handle if it is not a living one, or if it is lent, so that the add-on must not change it.
    /// \return whether the add-on may change it.
    bool checkChange(const void* handle, const Moment& now, FindingLog& findings) const {
        return checkOwn(handle, now, findings, "use-after-free");
    }
    /// The same for a function that frees \p handle.
    bool checkFree(const void* handle, const Moment& now, FindingLog& findings) const {
        return checkOwn(handle, now, findings, "double-free");
    }
    /// Enters that the living \p handle is freed.
    void freed(const void* handle, const Moment& now);

    bool isLiving(const void* handle) const { return m_living.count(handle) != 0; }
    bool isFreed(const void* handle) const { return m_freed.count(handle) != 0; }
    /// Where the living \p handle was allocated.
    const Moment& originOf(const void* handle) const { return m_living.at(handle).since; }
    /// The name of the living \p handle in messages, for example "mutex#1".
    std::string labelOf(const void* handle) const;
    /// The name of \p handle as calls show it, for example "mutex#1", or "style-set#1" for one that was lent; "unknown"
    /// if it is not living.
    std::string nameOf(const void* handle) const;
    /// The living handles that were allocated in entries for which \p isMeant is true, ordered by number.
    std::vector<const void*> living(const std::function<bool(const Entry&)>& isMeant) const;
    /// Reports the handles that living() returns as one leak, but each handle only once.
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
    std::string numbered(const Living& living) const;
    // `ruleOfFreed` is the rule that is broken if the handle was freed.
    bool checkOwn(const void* handle, const Moment& now, FindingLog& findings, const char* ruleOfFreed) const;
    void judgeNotLiving(const void* handle, const Moment& now, FindingLog& findings, const char* ruleOfFreed) const;

    HandleKind m_kind;
    std::size_t m_lent = 0;  // how many were lent so far
    std::unordered_map<const void*, Living> m_living;
    std::unordered_map<const void*, Freed> m_freed;
};

}  // namespace vexa::standin
