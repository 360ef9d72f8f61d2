/// \file
/// The arguments and the result of a call as text, as described for Call.
#pragma once

#include <cstddef>
#include <string>
#include <type_traits>

#include "HostState.h"
#include "contract/ArgumentChecks.h"
#include "vexa/VexaUtil.h"

namespace vexa::standin {

std::string textOf(const HostState& host, const char* text);
std::string textOf(const HostState& host, OptionalText text);
std::string textOf(const HostState& host, const AddOnList_s* identity);
std::string textOf(const HostState& host, const ThreadMutex_s* mutex);
std::string textOf(const HostState& host, const ArgList_s* argList);
std::string textOf(const HostState& host, const Set_s* set);
std::string textOf(const HostState& host, char* string);
std::string textOf(const HostState& host, GetValueReturnCode_e code);

template <class Number, std::enable_if_t<std::is_arithmetic_v<Number>, int> = 0>
std::string textOf(const HostState&, Number number) {
    return std::to_string(number);
}

// An address for a result. The address itself would differ from run to run.
template <class Number, std::enable_if_t<std::is_arithmetic_v<Number>, int> = 0>
std::string textOf(const HostState&, Number* address) {
    return address == nullptr ? "null" : "address";
}

// The address of a handle.
template <class Handle>
std::string textOf(const HostState& host, Handle** address) {
    return address == nullptr ? "null" : textOf(host, *address);
}

template <class... Arguments>
std::string listOf(const HostState& host, const Arguments&... arguments) {
    std::string list;
    ((list += (list.empty() ? "" : ", ") + textOf(host, arguments)), ...);
    return list;
}

}  // namespace vexa::standin
