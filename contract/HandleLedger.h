#pragma once

#include <cstddef>
#include <functional>
#include <memory>
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
    const char* leakRule;  ///< the rule about handles that are not freed
};

/// The living and the freed handles of one kind. The class compares handles and never dereferences them.
class HandleLedger {
public:
    explicit HandleLedger(const HandleKind& kind) : m_kind(kind) {}

    /// Adds a handle that an add-on received. \p number is its number among those of its kind, counted from 1.
    void allocated(const void* handle, std::size_t number, const Moment& now);
    /// Adds a handle that add-ons may use, but not change or free.
    void lent(const void* handle, const Moment& now);
    /// Removes a handle that was lent.
    void takenBack(const void* handle, const Moment& now);

    /// Reports \p handle unless it is living.
    /// \return true if it is living.
    bool checkUse(const void* handle, const Moment& now, FindingLog& findings) const;
    /// Reports \p handle unless it is living, and if it is lent, because the add-on must then not change it.
    /// \return true if the add-on may change it.
    bool checkChange(const void* handle, const Moment& now, FindingLog& findings) const {
        return checkOwn(handle, now, findings, "use-after-free");
    }
    /// Does the same for a function that frees \p handle.
    bool checkFree(const void* handle, const Moment& now, FindingLog& findings) const {
        return checkOwn(handle, now, findings, "double-free");
    }
    /// Notes that the living \p handle is freed.
    void freed(const void* handle, const Moment& now);

    bool isLiving(const void* handle) const { return m_living.count(handle) != 0; }
    bool isFreed(const void* handle) const { return m_freed.count(handle) != 0; }
    /// Returns the moment in which the living \p handle was allocated.
    const Moment& originOf(const void* handle) const { return m_living.at(handle).since; }
    /// Returns where the exception was thrown that the add-on handled in that moment; null if there is no note of one.
    const std::shared_ptr<const CodeStack>& causeOf(const void* handle) const { return m_living.at(handle).cause; }
    /// Returns the name of the living \p handle in messages, for example "mutex#1".
    std::string labelOf(const void* handle) const;
    /// Returns the name of \p handle as calls show it, for example "mutex#1", or "style-set#1" for one that was lent;
    /// "unknown" if it is not living.
    std::string nameOf(const void* handle) const;
    /// Returns the living handles that were allocated in entries for which \p isMeant is true, ordered by number.
    std::vector<const void*> living(const std::function<bool(const Entry&)>& isMeant) const;
    /// Reports the handles that living() returns as one leak. Reports each handle only once.
    void reportLeaks(const std::function<bool(const Entry&)>& isMeant, const Moment& now, FindingLog& findings);

private:
    struct Living {
        std::size_t number;
        Moment since;
        std::shared_ptr<const CodeStack> cause = {};  // null if there is no note of one
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
    // `ruleOfFreed` is the rule to report if the handle was freed.
    bool checkOwn(const void* handle, const Moment& now, FindingLog& findings, const char* ruleOfFreed) const;
    void judgeNotLiving(const void* handle, const Moment& now, FindingLog& findings, const char* ruleOfFreed) const;

    HandleKind m_kind;
    std::size_t m_lent = 0;  // how many were lent so far
    std::unordered_map<const void*, Living> m_living;
    std::unordered_map<const void*, Freed> m_freed;
};

}  // namespace vexa::standin
