#include "FakedBacktrace.h"

#include <dlfcn.h>
#include <execinfo.h>

namespace vexa::tests {
namespace {

Backtrace faked = Backtrace::Real;

// The C library's function of that name.
template <class Function>
Function* original(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

FakedBacktrace::FakedBacktrace(Backtrace answer) { faked = answer; }

FakedBacktrace::~FakedBacktrace() { faked = Backtrace::Real; }

}  // namespace vexa::tests

using namespace vexa::tests;

// Seen by the libraries of the process, whatever visibility this build defaults to.
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
