#pragma once

#include <cstddef>

namespace vexa::standin {

/// What a host sees when it looks at one of its strings.
struct HostStringState {
    std::size_t size = 0;      ///< how many bytes the add-on asked for
    bool isIntact = true;      ///< false if something was written past those bytes
    bool isTerminated = true;  ///< false if none of those bytes is zero
};

/// The strings of the host that is checked. Each host implements this in its own way.
class HostStringsInterface {
public:
    HostStringsInterface() = default;
    HostStringsInterface(const HostStringsInterface&) = delete;
    HostStringsInterface& operator=(const HostStringsInterface&) = delete;
    virtual ~HostStringsInterface() = default;

    /// Looks at the string at \p string, which VexaUtilStringAlloc() returned and nobody has freed.
    /// \return the default state if the host cannot tell, so that no finding is made.
    virtual HostStringState stateOf(const char* string) const = 0;
};

}  // namespace vexa::standin
