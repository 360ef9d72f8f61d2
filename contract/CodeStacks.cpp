#include "contract/CodeStacks.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "contract/ThrowNotes.h"

namespace vexa::standin {
namespace {

constexpr std::size_t kMostStacks = 4096;

// Returns the place of an instruction; `object` is null if it is unknown.
CodePlace placeOf(const CodeObject* object, std::uintptr_t address) {
    if (object == nullptr) return {"", address, "", false};
    return {object->path, address - object->loadedAt, object->buildId, object->isOfAddOn};
}

auto fieldsOf(const CodePlace& place) { return std::tie(place.offset, place.object, place.buildId, place.isAddOn); }

}  // namespace

bool CodeStacks::LessByPlaces::operator()(const std::shared_ptr<const CodeStack>& left,
                                          const std::shared_ptr<const CodeStack>& right) const {
    return std::lexicographical_compare(
        left->begin(), left->end(), right->begin(), right->end(),
        [](const CodePlace& one, const CodePlace& other) { return fieldsOf(one) < fieldsOf(other); });
}

// Walks the stack of the calling thread.
struct CodeStacks::Walk {
    std::vector<std::uintptr_t> addresses;
    Image image;
    bool isInMemory = true;  // whether all return addresses are where the image says

    // Called by the unwinder, whose stack pointer of a frame is the one after the return to this frame.
    static _Unwind_Reason_Code add(_Unwind_Context* context, void* walk) {
        const auto* const slot = reinterpret_cast<const std::uintptr_t*>(_Unwind_GetCFA(context)) - 1;
        return static_cast<Walk*>(walk)->add(frameOf(context), slot);
    }

private:
    _Unwind_Reason_Code add(const UnwoundFrame& frame, const std::uintptr_t* slot) {
        if (frame.address == 0) return _URC_END_OF_STACK;
        addresses.push_back(frame.place());
        isInMemory = isInMemory && !frame.isInterrupted && *slot == frame.address;
        image.slots[image.count++] = {slot, frame.address};
        return image.count == kMostCalls ? _URC_END_OF_STACK : _URC_NO_REASON;
    }
};

// A call of this function has a frame of its own, so the frame's address and the return addresses identify a stack.
[[gnu::noinline]] std::shared_ptr<const CodeStack> CodeStacks::capture() {
    const void* const frame = __builtin_frame_address(0);
    if (const Image* const image = findImage(frame)) return image->stack;
    Walk walk;
    walk.addresses.reserve(kMostCalls);
    _Unwind_Backtrace(&Walk::add, &walk);
    std::shared_ptr<const CodeStack> stack = keep(walk.addresses);
    if (walk.isInMemory && walk.image.count > 1) {
        walk.image.frame = frame;
        walk.image.stack = stack;
        m_images[m_nextImage++ % m_images.size()] = std::move(walk.image);
    }
    return stack;
}

std::shared_ptr<const CodeStack> CodeStacks::of(const void* function) {
    return function == nullptr ? nullptr : keep({reinterpret_cast<std::uintptr_t>(function)});
}

std::shared_ptr<const CodeStack> CodeStacks::ofThrow(const void* exception) {
    const std::vector<std::uintptr_t> thrower = throwerOf(exception);
    return thrower.empty() ? nullptr : keep(thrower);
}

void CodeStacks::forget() {
    m_stacks.clear();
    m_images = {};
    m_objects.forget();
}

std::shared_ptr<const CodeStack> CodeStacks::keep(const std::vector<std::uintptr_t>& addresses) {
    if (m_stacks.size() == kMostStacks) m_stacks.clear();
    const auto [entry, isNew] = m_stacks.try_emplace(addresses, nullptr);
    if (!isNew) return entry->second;
    auto stack = std::make_shared<CodeStack>();
    for (const std::uintptr_t address : addresses)
        stack->push_back(placeOf(m_objects.objectAt(address).get(), address));
    if (m_kept.size() == kMostStacks) m_kept.clear();
    return entry->second = *m_kept.insert(std::move(stack)).first;
}

// The first slot was overwritten when the unwinder returned. The others are above the frame, on the stack of the
// thread.
const CodeStacks::Image* CodeStacks::findImage(const void* frame) const {
    const auto found = std::find_if(m_images.begin(), m_images.end(), [frame](const Image& image) {
        return image.frame == frame && std::all_of(image.slots.begin() + 1, image.slots.begin() + image.count,
                                                   [](const Slot& slot) { return *slot.at == slot.value; });
    });
    return found == m_images.end() ? nullptr : &*found;
}

}  // namespace vexa::standin
