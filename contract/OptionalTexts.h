/// \file
/// Which text arguments of the host's functions may be null. vexa/VexaUtil.h says the same in words.
#pragma once

#include <cstddef>
#include <utility>

#include "contract/HostFunctionTable.h"

namespace vexa::standin {

/// A text argument that may be null.
struct OptionalText {
    const char* text;
};

inline constexpr std::size_t kNoArgument = static_cast<std::size_t>(-1);

/// The position, counted from 0, of the text argument of \p function that may be null.
template <HostFunction function>
inline constexpr std::size_t kOptionalText = kNoArgument;
template <>
inline constexpr std::size_t kOptionalText<HostFunction::VexaUtilStatusStartPercentDone> = 0;
template <>
inline constexpr std::size_t kOptionalText<HostFunction::VexaUtilStatusSetPercentDoneText> = 0;
template <>
inline constexpr std::size_t kOptionalText<HostFunction::VexaUtilDataSetAddJournalCommand> = 2;
template <>
inline constexpr std::size_t kOptionalText<HostFunction::VexaUtilStringAlloc> = 1;

template <bool isOptionalText, class Argument>
auto asDeclared(const Argument& argument) {
    if constexpr (isOptionalText) {
        return OptionalText{argument};
    } else {
        return argument;
    }
}

template <HostFunction function, class Use, std::size_t... positions, class... Arguments>
void withOptionalText(const Use& use, std::index_sequence<positions...>, const Arguments&... arguments) {
    use(asDeclared<positions == kOptionalText<function>>(arguments)...);
}

/// Calls \p use with the \p arguments of a call of \p function. The text that may be null becomes an OptionalText.
template <HostFunction function, class Use, class... Arguments>
void withOptionalText(const Use& use, const Arguments&... arguments) {
    withOptionalText<function>(use, std::index_sequence_for<Arguments...>(), arguments...);
}

}  // namespace vexa::standin
