#include "contract/HostFunctionTable.h"

#include <algorithm>
#include <iterator>
#include <type_traits>

#include "vexa/VexaUtil.h"

namespace vexa::standin {
namespace {

template <class Result, class... Arguments>
constexpr ResultKind_e resultOf(Result (*)(Arguments...)) {
    if (std::is_void_v<Result>) return ResultKind_e::None;
    if (std::is_pointer_v<Result>) return ResultKind_e::Handle;
    return std::is_enum_v<Result> ? ResultKind_e::ReturnCode : ResultKind_e::Boolean;
}

constexpr HostFunctionInfo kFunctions[] = {
#define VEXASTANDIN_INFO(name, role, scope, anyThread) {#name, scope, ScopeRole_e::role, anyThread, resultOf(name)},
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

std::optional<HostFunction> findHostFunction(std::string_view name) {
    const auto found = std::find_if(std::begin(kFunctions), std::end(kFunctions),
                                    [&](const HostFunctionInfo& info) { return info.name == name; });
    if (found == std::end(kFunctions)) return std::nullopt;
    return static_cast<HostFunction>(found - std::begin(kFunctions));
}

}  // namespace vexa::standin
