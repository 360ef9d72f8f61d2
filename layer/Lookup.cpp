#include "layer/Lookup.h"

#include <dlfcn.h>

#include "layer/HostCalls.h"
#include "layer/Layer.h"

namespace vexa::layer {
namespace {

using Function = void* (*)(void*, const char*);

// The assembler code below names these two.
extern "C" {
[[gnu::used]] Function vexaLayerLookup = nullptr;
[[gnu::used]] void* vexaLayerFind(void* handle, const char* name) noexcept;
}

void* vexaLayerFind(void* handle, const char* name) noexcept {
    if (name == nullptr || Layer::current() == nullptr) return nullptr;
    void* const checked = checkedFunction(name);
    const bool asksAll = handle == RTLD_DEFAULT || handle == RTLD_NEXT;
    return checked == nullptr || asksAll || vexaLayerLookup(handle, name) != nullptr ? checked : nullptr;
}

// dlsym() looks at its return address for RTLD_DEFAULT and RTLD_NEXT. So this function has no frame of its own when it
// goes on to dlsym().
[[gnu::naked]] void* checkedDlsym(void*, const char*) {
    asm("push %rdi\n"
        "push %rsi\n"
        "sub $8, %rsp\n"
        "call vexaLayerFind\n"
        "add $8, %rsp\n"
        "pop %rsi\n"
        "pop %rdi\n"
        "test %rax, %rax\n"
        "jnz 1f\n"
        "jmp *vexaLayerLookup(%rip)\n"
        "1: ret");
}

}  // namespace

void* lookup() { return reinterpret_cast<void*>(vexaLayerLookup); }

void setLookup(void* address) { vexaLayerLookup = reinterpret_cast<Function>(address); }

void* checkedLookup() { return reinterpret_cast<void*>(&checkedDlsym); }

}  // namespace vexa::layer
