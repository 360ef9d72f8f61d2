#pragma once

#include <cstddef>
#include <cstring>

namespace vexa::tests {

/// Returns the slot of a virtual member function, counted from 0; -1 if it is not virtual. A virtual destructor has two
/// slots. The C++ binary interface of x86-64 stores a pointer to a virtual member as 1 + 8 * slot and an adjustment.
template <class MemberFunction>
std::ptrdiff_t slotOf(MemberFunction function) {
    std::ptrdiff_t word = 0;
    static_assert(sizeof function == 2 * sizeof word, "not a pointer to member function");
    std::memcpy(&word, &function, sizeof word);
    return word % 2 == 1 ? (word - 1) / static_cast<std::ptrdiff_t>(sizeof word) : -1;
}

/// Returns the field at a byte offset in an object. For tests of the order of private fields.
template <class Field, class Object>
const Field& fieldAt(const Object& object, std::size_t offset) {
    const void* const address = reinterpret_cast<const char*>(&object) + offset;
    return *static_cast<const Field*>(address);
}

}  // namespace vexa::tests
