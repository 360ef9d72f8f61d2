// Stops the build if the table of host functions and the host's header differ, or if a function has no check.
// CMake writes DeclaredFunctions.inc from that header.

#include <cstddef>
#include <iterator>
#include <string_view>

#include "contract/Checks.h"
#include "contract/HostFunctionTable.h"

namespace vexa::standin {
namespace {

constexpr std::string_view kListed[] = {
#define VEXASTANDIN_NAME(name, role, scope, anyThread) #name,
    VEXASTANDIN_HOST_FUNCTIONS(VEXASTANDIN_NAME)
#undef VEXASTANDIN_NAME
};

constexpr std::string_view kDeclared[] = {
#define DECLARED(name) #name,
#include "DeclaredFunctions.inc"
#undef DECLARED
};

constexpr bool isListed(std::string_view name) {
    for (const std::string_view listed : kListed) {  // NOLINT(readability-use-anyofallof): not constexpr in C++17
        if (listed == name) return true;
    }
    return false;
}

#define DECLARED(name) \
    static_assert(isListed(#name), #name " is declared in vexa/VexaUtil.h, not in HostFunctionTable.h");
#include "DeclaredFunctions.inc"
#undef DECLARED

static_assert(std::size(kListed) == std::size(kDeclared),
              "HostFunctionTable.h lists what vexa/VexaUtil.h does not declare");

#define VEXASTANDIN_CHECK(name, role, scope, anyThread) \
    static_assert(sizeof(Check<HostFunction::name>) != 0, #name " has no Check in contract/Checks.h");
VEXASTANDIN_HOST_FUNCTIONS(VEXASTANDIN_CHECK)
#undef VEXASTANDIN_CHECK

}  // namespace
}  // namespace vexa::standin
