#pragma once

#include <cstddef>
#include <string>

#include "load/Load.h"

namespace vexa::load {

/// How large a text is to be: 1 MiB, or 64 MiB when the whole load is asked for.
inline std::size_t largeSize() { return static_cast<std::size_t>(amount(1L << 20, 64L << 20)); }

/// \p size times \p c.
inline std::string filled(std::size_t size, char c) { return std::string(size, c); }

/// \p piece again and again, whole, up to \p size bytes.
inline std::string repeated(std::size_t size, const std::string& piece) {
    std::string text;
    text.reserve(size);
    while (text.size() + piece.size() <= size) text += piece;
    return text;
}

/// What \p make returns for 0, 1 and so on, up to about \p size bytes: no piece has more than 48.
template <class Make>
std::string counted(std::size_t size, const Make& make) {
    constexpr std::size_t kLongestPiece = 48;
    std::string text;
    text.reserve(size);
    for (std::size_t i = 0; text.size() + kLongestPiece <= size; ++i) text += make(i);
    return text;
}

/// Names a test after its parameter.
struct NameOf {
    template <class Info>
    std::string operator()(const Info& info) const {
        return info.param.name;
    }
};

}  // namespace vexa::load
