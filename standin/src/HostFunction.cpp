#include "HostFunction.h"

#include <algorithm>
#include <iterator>

#include "vexa/InvalidArgumentException.h"

namespace vexa::standin {
namespace {

constexpr const char* kNames[] = {
#define VEXASTANDIN_NAME(name) #name,
    VEXASTANDIN_HOST_FUNCTIONS(VEXASTANDIN_NAME)
#undef VEXASTANDIN_NAME
};

}  // namespace

const char* nameOf(HostFunction function) { return kNames[static_cast<std::size_t>(function)]; }

HostFunction hostFunction(const std::string& name) {
    const auto found = std::find(std::begin(kNames), std::end(kNames), name);
    if (found == std::end(kNames)) throw InvalidArgumentException("The host has no function \"" + name + "\"");
    return static_cast<HostFunction>(found - std::begin(kNames));
}

}  // namespace vexa::standin
