#include "api/HandleNames.h"

#include <cstddef>

namespace vexa::standin {
namespace {

template <class Object, class Handle>
std::string numbered(const std::string& kind, const Handles<Object, Handle>& handles, const Handle* handle) {
    const std::size_t number = handles.numberOf(handle);
    return number == 0 ? "unknown" : kind + '#' + std::to_string(number);
}

}  // namespace

std::string HandleNames::nameOf(const AddOnList_s* identity) const {
    for (const auto& addOn : m_host.addOns.copy()) {
        if (addOn->identity() == identity) return addOn->info().id;
    }
    return "unknown";
}

std::string HandleNames::nameOf(const ThreadMutex_s* mutex) const { return numbered("mutex", m_host.mutexes, mutex); }

std::string HandleNames::nameOf(const ArgList_s* argList) const {
    return numbered("arglist", m_host.argLists, argList);
}

std::string HandleNames::nameOf(const Set_s* set) const {
    const bool isStyle = m_host.styleSets.find(set) != nullptr;
    return isStyle ? numbered("style-set", m_host.styleSets, set) : numbered("set", m_host.sets, set);
}

std::string HandleNames::nameOf(const char* string) const {
    return numbered<HostString, char>("string", m_host.strings, string);
}

}  // namespace vexa::standin
