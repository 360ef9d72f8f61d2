#pragma once

#include <cstddef>
#include <cstring>

namespace vexa::tests {

/// The slot of a virtual member function, counted from 0; a virtual destructor takes two. -1 when it is not virtual.
/// Reads the pointer to member as the C++ binary interface of x86-64 lays it out: 1 + 8 * slot, then an adjustment.
template <class MemberFunction>
std::ptrdiff_t slotOf(MemberFunction function) {
    std::ptrdiff_t word = 0;
    static_assert(sizeof function == 2 * sizeof word, "not a pointer to member function");
    std::memcpy(&word, &function, sizeof word);
    return word % 2 == 1 ? (word - 1) / static_cast<std::ptrdiff_t>(sizeof word) : -1;
}

/// The field of an object that lies at a byte offset. For tests of the order of private fields.
template <class Field, class Object>
const Field& fieldAt(const Object& object, std::size_t offset) {
    const void* const address = reinterpret_cast<const char*>(&object) + offset;
    return *static_cast<const Field*>(address);
}

}  // namespace vexa::tests
