#pragma once

#include <cstring>
#include <exception>

namespace vexa::standin {

/// Returns the exception that the calling thread handles, as an add-on threw it; null if it handles none.
inline const void* handledException() {
    const std::exception_ptr exception = std::current_exception();
    const void* address = nullptr;
    static_assert(sizeof exception == sizeof address, "the pointer has the address only");
    std::memcpy(&address, reinterpret_cast<const unsigned char*>(&exception), sizeof address);
    return address;
}

}  // namespace vexa::standin
