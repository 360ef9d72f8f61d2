#pragma once

#include <cerrno>
#include <system_error>

namespace vexa::runner {

/// Throws what errno says.
/// \throws std::system_error
[[noreturn]] inline void throwLastError() { throw std::system_error(errno, std::generic_category()); }
/// With \p what before it.
/// \throws std::system_error
[[noreturn]] inline void throwLastError(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace vexa::runner
