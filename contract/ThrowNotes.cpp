#include "contract/ThrowNotes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <mutex>
#include <thread>

#include "contract/UnwoundFrame.h"

namespace vexa::standin {
namespace {

struct Note {
    const void* exception = nullptr;  // null if there is no note
    std::thread::id thread;
    std::size_t count = 0;
    std::array<std::uintptr_t, kMostCalls> addresses{};
};

// Not one for each thread: a library that is loaded early has little memory of that kind.
std::mutex theGuard;
std::array<Note, 16> theNotes;
std::size_t theNext = 0;

_Unwind_Reason_Code add(_Unwind_Context* context, void* into) {
    Note& note = *static_cast<Note*>(into);
    const UnwoundFrame frame = frameOf(context);
    if (frame.address == 0) return _URC_END_OF_STACK;
    note.addresses[note.count++] = frame.place();
    return note.count == note.addresses.size() ? _URC_END_OF_STACK : _URC_NO_REASON;
}

void forget(const void* exception) {
    for (Note& note : theNotes) {
        if (note.exception == exception) note.exception = nullptr;
    }
}

}  // namespace

void noteThrow(const void* exception) noexcept {
    Note note{exception, std::this_thread::get_id()};
    _Unwind_Backtrace(&add, &note);
    const std::lock_guard<std::mutex> lock(theGuard);
    forget(exception);  // an earlier one at the same address is gone
    theNotes[theNext++ % theNotes.size()] = note;
}

std::vector<std::uintptr_t> throwerOf(const void* exception) {
    if (exception == nullptr) return {};
    const std::lock_guard<std::mutex> lock(theGuard);
    const auto found = std::find_if(theNotes.begin(), theNotes.end(),
                                    [exception](const Note& note) { return note.exception == exception; });
    if (found == theNotes.end()) return {};
    return {found->addresses.begin(), found->addresses.begin() + found->count};
}

void forgetThrows() {
    const std::lock_guard<std::mutex> lock(theGuard);
    for (Note& note : theNotes) {
        if (note.thread == std::this_thread::get_id()) note.exception = nullptr;
    }
}

}  // namespace vexa::standin
