#pragma once

#include <cerrno>
#include <system_error>

namespace vexa::runner {

/// Throws the error in errno.
/// \throws std::system_error
[[noreturn]] inline void throwLastError() { throw std::system_error(errno, std::generic_category()); }
/// Throws the error in errno, with \p what before the message.
/// \throws std::system_error
[[noreturn]] inline void throwLastError(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace vexa::runner
