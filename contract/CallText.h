/// \file
/// The arguments and the result of a call as text, as described for Call.
#pragma once

#include <string>
#include <type_traits>

#include "vexa/VexaUtil.h"

namespace vexa::standin {

/// The names that a host has for its handles, for example "mutex#1". No handle is null. The name of a handle that the
/// host does not know is "unknown".
class HandleNamesInterface {
public:
    HandleNamesInterface() = default;
    HandleNamesInterface(const HandleNamesInterface&) = delete;
    HandleNamesInterface& operator=(const HandleNamesInterface&) = delete;
    virtual ~HandleNamesInterface() = default;

    virtual std::string nameOf(const AddOnList_s* identity) const = 0;
    virtual std::string nameOf(const ThreadMutex_s* mutex) const = 0;
    virtual std::string nameOf(const ArgList_s* argList) const = 0;
    virtual std::string nameOf(const Set_s* set) const = 0;
    virtual std::string nameOf(const char* string) const = 0;
};

/// A text argument, in quotes.
std::string textOf(const HandleNamesInterface& names, const char* text);
std::string textOf(const HandleNamesInterface& names, GetValueReturnCode_e code);

/// A handle. A string of the host is one; its type has no const.
template <class Handle, std::enable_if_t<!std::is_arithmetic_v<Handle>, int> = 0>
std::string textOf(const HandleNamesInterface& names, Handle* handle) {
    return handle == nullptr ? "null" : names.nameOf(handle);
}
inline std::string textOf(const HandleNamesInterface& names, char* string) {
    return string == nullptr ? "null" : names.nameOf(string);
}

template <class Number, std::enable_if_t<std::is_arithmetic_v<Number>, int> = 0>
std::string textOf(const HandleNamesInterface&, Number number) {
    return std::to_string(number);
}

// Where to store a result. The address itself would differ from run to run.
template <class Number, std::enable_if_t<std::is_arithmetic_v<Number>, int> = 0>
std::string textOf(const HandleNamesInterface&, Number* address) {
    return address == nullptr ? "null" : "address";
}

// The address of a handle.
template <class Handle>
std::string textOf(const HandleNamesInterface& names, Handle** address) {
    return address == nullptr ? "null" : textOf(names, *address);
}

template <class... Arguments>
std::string listOf(const HandleNamesInterface& names, const Arguments&... arguments) {
    std::string list;
    ((list += (list.empty() ? "" : ", ") + textOf(names, arguments)), ...);
    return list;
}

}  // namespace vexa::standin
