#include "HostFunction.h"

#include <algorithm>
#include <iterator>

#include "vexa/InvalidArgumentException.h"

namespace vexa::standin {
namespace {

constexpr HostFunctionInfo kFunctions[] = {
#define VEXASTANDIN_INFO(name, role, scope, anyThread) {#name, scope, ScopeRole_e::role, anyThread},
    VEXASTANDIN_HOST_FUNCTIONS(VEXASTANDIN_INFO)
#undef VEXASTANDIN_INFO
};

}  // namespace

const std::vector<HostFunctionInfo>& hostFunctions() {
    static const std::vector<HostFunctionInfo> functions(std::begin(kFunctions), std::end(kFunctions));
    return functions;
}

const HostFunctionInfo& infoOf(HostFunction function) { return kFunctions[static_cast<std::size_t>(function)]; }

const char* nameOf(HostFunction function) { return infoOf(function).name; }

HostFunction hostFunction(const std::string& name) {
    const auto found = std::find_if(std::begin(kFunctions), std::end(kFunctions),
                                    [&](const HostFunctionInfo& info) { return info.name == name; });
    if (found == std::end(kFunctions)) throw InvalidArgumentException("The host has no function \"" + name + "\"");
    return static_cast<HostFunction>(found - std::begin(kFunctions));
}

}  // namespace vexa::standin
