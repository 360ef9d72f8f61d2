#pragma once

#include <cstddef>
#include <string>

#include "load/Load.h"

namespace vexa::load {

/// How many times less than otherwise a test may do: the sanitizers make programs ten times slower and more.
constexpr long kReduction = VEXA_IS_SANITIZED ? 8 : 1;

/// Returns the size of a text: 64 MiB if the full load is requested, 1 MiB otherwise, and less under the sanitizers.
inline std::size_t largeSize() { return static_cast<std::size_t>(amount((1L << 20) / kReduction, 64L << 20)); }

/// Returns \p size times the character \p c.
inline std::string filled(std::size_t size, char c) { return std::string(size, c); }

/// Returns \p piece repeated, up to \p size bytes. The last piece is complete, too.
inline std::string repeated(std::size_t size, const std::string& piece) {
    std::string text;
    text.reserve(size);
    while (text.size() + piece.size() <= size) text += piece;
    return text;
}

/// Returns the joined results of \p make for 0, 1 and so on, about \p size bytes. No result may have more than 48
/// bytes.
template <class Make>
std::string counted(std::size_t size, const Make& make) {
    constexpr std::size_t kLongestPiece = 48;
    std::string text;
    text.reserve(size);
    for (std::size_t i = 0; text.size() + kLongestPiece <= size; ++i) text += make(i);
    return text;
}

/// Returns the name of a test, made from its parameter.
struct NameOf {
    template <class Info>
    std::string operator()(const Info& info) const {
        return info.param.name;
    }
};

}  // namespace vexa::load
