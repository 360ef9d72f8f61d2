// Replaces the function that the compiler calls for `throw`, for the program and for its shared objects. It notes where
// an add-on throws, so that a failed command names this line.

#include <dlfcn.h>

#include <cstdlib>

#include "vexastandin/Host.h"

namespace vexa::runner {

using Throw = void (*)(void* exception, void* type, void (*destroy)(void*));

// Compilers declare the function by its own name, each with other types.
[[noreturn, gnu::visibility("default")]] void throwNoted(void* exception, void* type,
                                                         void (*destroy)(void*)) asm("__cxa_throw");

[[noreturn]] void throwNoted(void* exception, void* type, void (*destroy)(void*)) {
    static const auto next = reinterpret_cast<Throw>(dlsym(RTLD_NEXT, "__cxa_throw"));
    if (standin::Host::isInAddOn()) standin::Host::noteThrow(exception);
    next(exception, type, destroy);
    std::abort();  // not reached
}

}  // namespace vexa::runner
