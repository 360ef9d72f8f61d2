#include "api/CallText.h"

namespace vexa::standin {
namespace {

template <class Object, class Handle>
std::string handleText(const std::string& kind, const Handles<Object, Handle>& handles, const Handle* handle) {
    if (handle == nullptr) return "null";
    const std::size_t number = handles.numberOf(handle);
    return number == 0 ? "unknown" : kind + '#' + std::to_string(number);
}

}  // namespace

std::string textOf(const HostState&, const char* text) {
    if (text == nullptr) return "null";
    std::string quoted = "\"";
    for (; *text != '\0'; ++text) {
        switch (*text) {
            case '"': quoted += "\\\""; break;
            case '\\': quoted += "\\\\"; break;
            case '\n': quoted += "\\n"; break;
            case '\r': quoted += "\\r"; break;
            case '\t': quoted += "\\t"; break;
            default: quoted += *text;
        }
    }
    return quoted + '"';
}

std::string textOf(const HostState& host, OptionalText text) { return textOf(host, text.text); }

std::string textOf(const HostState& host, const AddOnList_s* identity) {
    if (identity == nullptr) return "null";
    for (const auto& addOn : host.addOns.copy()) {
        if (addOn->identity() == identity) return addOn->info().id;
    }
    return "unknown";
}

std::string textOf(const HostState& host, const ThreadMutex_s* mutex) {
    return handleText("mutex", host.mutexes, mutex);
}

std::string textOf(const HostState& host, const ArgList_s* argList) {
    return handleText("arglist", host.argLists, argList);
}

std::string textOf(const HostState& host, const Set_s* set) {
    return host.styleSets.find(set) == nullptr ? handleText("set", host.sets, set)
                                               : handleText("style-set", host.styleSets, set);
}

std::string textOf(const HostState& host, char* string) {
    return handleText<HostString, char>("string", host.strings, string);
}

std::string textOf(const HostState&, GetValueReturnCode_e code) {
    switch (code) {
        case GetValueReturnCode_Ok: return "GetValueReturnCode_Ok";
        case GetValueReturnCode_OtherType: return "GetValueReturnCode_OtherType";
        case GetValueReturnCode_UnknownPath: return "GetValueReturnCode_UnknownPath";
        case GetValueReturnCode_NotAvailable: return "GetValueReturnCode_NotAvailable";
    }
    return std::to_string(static_cast<int>(code));
}

}  // namespace vexa::standin
