#include "layer/Throws.h"

#include <string_view>

#include "contract/ThrowNotes.h"
#include "layer/Layer.h"

namespace vexa::layer {
namespace {

constexpr const char* kThrow = "__cxa_throw";

// A class with a destructor is returned at an address that the caller passes first. The layer has a C++ library of its
// own, so it neither knows nor frees the program's exceptions itself.
using CurrentException = void (*)(const void** exception);
using ReleaseException = void (*)(const void** exception);

CurrentException theCurrentException = nullptr;  // std::current_exception()
ReleaseException theReleaseException = nullptr;  // ~exception_ptr()

// The assembler code below names these two.
extern "C" {
[[gnu::used]] void* vexaLayerThrow = nullptr;
[[gnu::used]] void vexaLayerNoteThrow(const void* exception) noexcept;
}

void vexaLayerNoteThrow(const void* exception) noexcept {
    inLayer([=](Layer&) { standin::noteThrow(exception); });
}

// The unwinder of the program does not know the code of the layer. So this function has no frame of its own when it
// goes on to the program's.
[[gnu::naked]] void checkedThrow(void*, void*, void*) {
    asm("push %rdi\n"
        ".cfi_adjust_cfa_offset 8\n"
        "push %rsi\n"
        ".cfi_adjust_cfa_offset 8\n"
        "push %rdx\n"
        ".cfi_adjust_cfa_offset 8\n"
        "call vexaLayerNoteThrow\n"
        "pop %rdx\n"
        ".cfi_adjust_cfa_offset -8\n"
        "pop %rsi\n"
        ".cfi_adjust_cfa_offset -8\n"
        "pop %rdi\n"
        ".cfi_adjust_cfa_offset -8\n"
        "jmp *vexaLayerThrow(%rip)\n");
}

}  // namespace

void takeThrowFunctions(const ElfImage& image) {
    if (vexaLayerThrow != nullptr) return;
    void* const current = image.findFunction("_ZSt17current_exceptionv");
    void* const release = image.findFunction("_ZNSt15__exception_ptr13exception_ptrD1Ev");
    if (current == nullptr || release == nullptr) return;
    vexaLayerThrow = image.findFunction(kThrow);
    theCurrentException = reinterpret_cast<CurrentException>(current);
    theReleaseException = reinterpret_cast<ReleaseException>(release);
}

void* checkedThrowFunction(const char* name) {
    const bool isThrow = name == std::string_view(kThrow) && vexaLayerThrow != nullptr;
    return isThrow ? reinterpret_cast<void*>(&checkedThrow) : nullptr;
}

const void* handledException() {
    if (theCurrentException == nullptr) return nullptr;
    const void* pointer = nullptr;
    theCurrentException(&pointer);
    const void* const exception = pointer;
    theReleaseException(&pointer);
    return exception;
}

}  // namespace vexa::layer
