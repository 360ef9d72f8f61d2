#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "contract/FindingLog.h"
#include "contract/HandleLedger.h"
#include "contract/Moment.h"

namespace vexa::standin {

/// The kind of an argument. Each kind has a function that appends it.
enum class ArgumentKind_e { String, Integer, DoubleAddress, ParamAddress };

/// Remembers which names each argument list has, and checks them.
class ArgumentNames {
public:
    explicit ArgumentNames(HandleLedger& argLists) : m_argLists(argLists) {}

    /// Checks an argument that was appended.
    void appended(const void* argList, const char* name, ArgumentKind_e kind, const Moment& now, FindingLog& findings);
    void forget(const void* argList) { m_names.erase(argList); }
    /// Checks the argument list of a style query.
    void queried(const void* argList, const Moment& now, FindingLog& findings) const;

private:
    struct Given {
        std::string name;
        Moment since;
    };

    const Given* find(const void* argList, const std::string& name) const;

    HandleLedger& m_argLists;
    std::unordered_map<const void*, std::vector<Given>> m_names;
};

}  // namespace vexa::standin
