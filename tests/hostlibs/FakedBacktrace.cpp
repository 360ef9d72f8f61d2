#include "FakedBacktrace.h"

#include <dlfcn.h>
#include <execinfo.h>

namespace vexa::tests {
namespace {

Backtrace faked = Backtrace::Real;

// Returns the C library's function `name`.
template <class Function>
Function* original(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

FakedBacktrace::FakedBacktrace(Backtrace answer) { faked = answer; }

FakedBacktrace::~FakedBacktrace() { faked = Backtrace::Real; }

}  // namespace vexa::tests

using namespace vexa::tests;

// The libraries of the process must use these functions, even if the build hides names by default.
#pragma GCC visibility push(default)

extern "C" {

int backtrace(void** frames, int size) {
    if (faked != Backtrace::OfAnother) return original<int(void**, int)>("backtrace")(frames, size);
    *frames = &faked;
    return 1;
}

char** backtrace_symbols(void* const* frames, int count) {
    if (faked == Backtrace::WithoutNames) return nullptr;
    return original<char**(void* const*, int)>("backtrace_symbols")(frames, count);
}

}  // extern "C"

#pragma GCC visibility pop
