#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "contract/FindingLog.h"
#include "contract/HandleLedger.h"
#include "contract/Moment.h"
#include "vexa/VexaUtil.h"

namespace vexa::standin {

/// The kind of an argument. Each kind has a function that appends it.
enum class ArgumentKind_e { String, Integer, DoubleAddress, ParamAddress };

/// Remembers which names each argument list has, and checks them.
class ArgumentNames {
public:
    explicit ArgumentNames(HandleLedger& argLists) : m_argLists(argLists) {}

    /// Checks an argument that was to be appended.
    /// \param address    where a query stores its result; null if the argument is none.
    /// \param isAppended false if the host refused it. It may refuse a name that the list has.
    void appended(const void* argList, const char* name, ArgumentKind_e kind, const void* address, bool isAppended,
                  const Moment& now, FindingLog& findings);
    void forget(const void* argList) { m_names.erase(argList); }
    /// Checks the argument list of a style query.
    void queried(const void* argList, const Moment& now, FindingLog& findings) const;
    /// Where the query with \p argList stores the address of a set or a text; null if it asks for something else.
    const VexaArbParam* placeOfHandle(const void* argList) const;

private:
    struct Given {
        std::string name;
        const void* address;
        Moment since;
    };

    const Given* find(const void* argList, const std::string& name) const;

    HandleLedger& m_argLists;
    std::unordered_map<const void*, std::vector<Given>> m_names;
};

}  // namespace vexa::standin
