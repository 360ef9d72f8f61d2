// An add-on that does nothing. A definition or a linker option makes one mistake in how it is built.

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>

#include "vexa/AddOn.h"

#if defined(MORE_EXPORTS)
VEXA_HOST_API void helperOfEverybody();
void helperOfEverybody() {}
#elif defined(WEAK_EXPORT)
extern "C" __attribute__((visibility("default"), weak)) void weakHelper();
void weakHelper() {}
#elif defined(UNRESOLVED)
extern "C" void VexaUtilOfAnotherHost();
namespace vexa {
void ofAnotherLibrary();
}
#elif defined(UNIQUE)
asm(".data\n"
    ".globl sharedByAll\n"
    ".type sharedByAll, @gnu_unique_object\n"
    ".size sharedByAll, 4\n"
    "sharedByAll: .long 0\n"
    ".text\n");
extern "C" __attribute__((visibility("default"))) int sharedByAll;
#elif defined(TEXT_RELOCATION)
asm(".text\n"
    ".quad vexaAddOn\n");
#elif defined(THREAD_LOCAL)
namespace {
thread_local std::string kept;
}
#elif defined(LEAK)
namespace {
void* volatile lost = nullptr;  // volatile, or compilers leave out what nobody uses
}
#endif

namespace {

VexaBoolean execute(const char*, char**) { return 1; }

void misbehaveAtLoading() {
#if defined(UNRESOLVED)
    VexaUtilOfAnotherHost();
    vexa::ofAnotherLibrary();
#elif defined(UNIQUE)
    ++sharedByAll;
#elif defined(THREAD_LOCAL)
    kept = "a text that is too long to be kept in place";
#elif defined(LEAK)
    lost = std::malloc(4000);
#elif defined(THREAD)
    std::thread([] { std::this_thread::sleep_for(std::chrono::hours(1)); }).detach();
#elif defined(ABORT)
    std::abort();
#endif
}

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) {
#if defined(REFUSE)
    constexpr bool refuses = true;
#else
    constexpr bool refuses = false;
#endif
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "BUILT", nullptr, execute, nullptr};
    misbehaveAtLoading();
    return refuses ? nullptr : &description;
}
