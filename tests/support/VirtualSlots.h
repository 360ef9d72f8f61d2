#pragma once

#include <cstddef>
#include <cstring>

namespace vexa::tests {

/// Returns the slot of a virtual member function, counted from 0; -1 if it is not virtual. A virtual destructor has two
/// slots. The C++ binary interface stores a pointer to a virtual member as 1 + 8 * slot and an adjustment. On ARM the 1
/// is in the adjustment, because functions may have odd addresses.
template <class MemberFunction>
std::ptrdiff_t slotOf(MemberFunction function) {
    std::ptrdiff_t words[2] = {};
    static_assert(sizeof function == sizeof words, "not a pointer to member function");
    std::memcpy(words, &function, sizeof words);
#if defined(__aarch64__) || defined(__arm__)
    const bool isVirtual = words[1] % 2 == 1;
#else
    const bool isVirtual = words[0] % 2 == 1;
#endif
    return isVirtual ? words[0] / static_cast<std::ptrdiff_t>(sizeof words[0]) : -1;
}

/// Returns the field at a byte offset in an object. For tests of the order of private fields.
template <class Field, class Object>
const Field& fieldAt(const Object& object, std::size_t offset) {
    const void* const address = reinterpret_cast<const char*>(&object) + offset;
    return *static_cast<const Field*>(address);
}

}  // namespace vexa::tests
