// The functions that the loader calls in an audit library. It has no la_symbind64(): the loader would allocate memory
// for each object, and never free it.

#include <link.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "contract/messages/LayerVariables.h"
#include "layer/Layer.h"
#include "layer/LayerTime.h"
#include "layer/LoadedObjects.h"
#include "layer/Settings.h"

namespace vexa::layer {
namespace {

// The version of glibc 2.35. Older ones slow down every call of the program.
constexpr unsigned kAuditVersion = 2;

// Null in a process that no runner has started. The program's last thread may still load objects while the process
// ends, so it is never destroyed.
LoadedObjects* theObjects = nullptr;

bool openObjects() {
    const char* const socket = std::getenv(standin::kSocketVariable);
    if (socket == nullptr) return false;
    const char* const entry = std::getenv(standin::kEntryVariable);
    const bool isTraced = std::getenv(standin::kTraceVariable) != nullptr;
    theObjects = new LoadedObjects(Settings{socket, entry == nullptr ? standin::kUsualEntry : entry, isTraced});
    return true;
}

LoadedObject* objectOf(const uintptr_t* cookie) { return reinterpret_cast<LoadedObject*>(*cookie); }

// In a process that the program has forked, a thread that is not there may hold a lock of the layer.
template <class Action>
void unlessForked(const Action& action) noexcept {
    if (wasForked() || isThreadInLayer) return;
    const LayerTime time;
    try {
        action();
    } catch (...) {}
}

// Runs after all code of the program.
[[gnu::destructor]] void endLayer() {
    if (Layer* const layer = Layer::current()) unlessForked([=] { layer->closeLeftEntries(); });
}

}  // namespace
}  // namespace vexa::layer

using namespace vexa::layer;

#pragma GCC visibility push(default)

extern "C" {

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): those of link.h are reserved
unsigned la_version(unsigned version) { return version >= kAuditVersion && openObjects() ? kAuditVersion : 0; }

char* la_objsearch(const char* name, uintptr_t* cookie, unsigned) {
    if (!wasForked()) theObjects->searches(objectOf(cookie));
    return const_cast<char*>(name);
}

unsigned la_objopen(link_map* map, Lmid_t space, uintptr_t* cookie) {
    *cookie = 0;
    if (space == LM_ID_BASE) {
        unlessForked([=] { *cookie = reinterpret_cast<uintptr_t>(theObjects->opened(*map)); });
    }
    return 0;
}

void la_activity(uintptr_t*, unsigned activity) {
    if (activity == LA_ACT_CONSISTENT) unlessForked([] { theObjects->areComplete(); });
}

unsigned la_objclose(uintptr_t* cookie) {
    if (objectOf(cookie) != nullptr) unlessForked([=] { theObjects->closes(objectOf(cookie)); });
    return 0;
}

// NOLINTEND(readability-inconsistent-declaration-parameter-name)

}  // extern "C"

#pragma GCC visibility pop
