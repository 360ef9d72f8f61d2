#pragma once

#include <string>

#include "HostState.h"
#include "contract/CallText.h"

namespace vexa::standin {

/// The names of a stand-in host's handles.
class HandleNames final : public HandleNamesInterface {
public:
    explicit HandleNames(const HostState& host) : m_host(host) {}

    std::string nameOf(const AddOnList_s* identity) const override;
    std::string nameOf(const ThreadMutex_s* mutex) const override;
    std::string nameOf(const ArgList_s* argList) const override;
    std::string nameOf(const Set_s* set) const override;
    std::string nameOf(const char* string) const override;

private:
    const HostState& m_host;
};

}  // namespace vexa::standin
