#include "layer/HostCalls.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <iterator>
#include <type_traits>

#include "layer/Layer.h"
#include "vexa/VexaUtil.h"

namespace vexa::layer {
namespace {

using standin::HostFunction;

constexpr HostFunction kAll[] = {
#define VEXASTANDIN_FUNCTION(name, role, scope, anyThread) HostFunction::name,
    VEXASTANDIN_HOST_FUNCTIONS(VEXASTANDIN_FUNCTION)
#undef VEXASTANDIN_FUNCTION
};

std::array<std::atomic<void*>, std::size(kAll)> theHostFunctions{};

template <HostFunction function, class... Arguments>
[[gnu::noinline]] std::size_t begin(const void* frame, Arguments... arguments) noexcept {
    std::size_t number = 0;
    inLayer([&](Layer& layer) { number = layer.callBegan<function>(frame, arguments...); });
    return number;
}

template <HostFunction function, class... Arguments>
[[gnu::noinline]] void end(const void* frame, std::size_t number, Arguments... arguments) noexcept {
    inLayer([&](Layer& layer) { layer.callEnded<function>(frame, number, arguments...); });
}

template <HostFunction function, class Result, class... Arguments>
[[gnu::noinline]] void endReturning(const void* frame, std::size_t number, Result result,
                                    Arguments... arguments) noexcept {
    inLayer([&](Layer& layer) { layer.callReturned<function>(frame, number, result, arguments...); });
}

template <HostFunction function, class Result, class... Arguments>
struct Checked {
    using Original = Result (*)(Arguments...);

    // An exception of the host may pass through this frame. It belongs to another C++ runtime, so nothing in this frame
    // may need a cleanup: begin() and end() are functions of their own, and their state is elsewhere.
    static Result call(Arguments... arguments) {
        const void* const frame = __builtin_frame_address(0);
        const auto original = reinterpret_cast<Original>(hostFunction(function));
        const std::size_t number = begin<function>(frame, arguments...);
        if constexpr (std::is_void_v<Result>) {
            original(arguments...);
            if (number != 0) end<function>(frame, number, arguments...);
        } else {
            const Result result = original(arguments...);
            if (number != 0) endReturning<function>(frame, number, result, arguments...);
            return result;
        }
    }
};

template <HostFunction function, class Result, class... Arguments>
void* checked(Result (*)(Arguments...)) {
    return reinterpret_cast<void*>(&Checked<function, Result, Arguments...>::call);
}

void* addressOfChecked(HostFunction function) {
    switch (function) {
#define VEXASTANDIN_CHECKED(name, role, scope, anyThread) \
    case HostFunction::name: return checked<HostFunction::name>(static_cast<decltype(&(name))>(nullptr));
        VEXASTANDIN_HOST_FUNCTIONS(VEXASTANDIN_CHECKED)
#undef VEXASTANDIN_CHECKED
    }
    return nullptr;
}

}  // namespace

void* hostFunction(HostFunction function) {
    return theHostFunctions[static_cast<std::size_t>(function)].load(std::memory_order_relaxed);
}

void setHostFunction(HostFunction function, void* address) {
    theHostFunctions[static_cast<std::size_t>(function)].store(address, std::memory_order_relaxed);
}

void* checkedFunction(const char* name) {
    const auto function = standin::findHostFunction(name);
    return function && hostFunction(*function) != nullptr ? addressOfChecked(*function) : nullptr;
}

}  // namespace vexa::layer
