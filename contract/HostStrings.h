#pragma once

#include <cstddef>

namespace vexa::standin {

/// The state of a string of the host.
struct HostStringState {
    std::size_t size = 0;      ///< the number of bytes that the add-on requested
    bool isIntact = true;      ///< false if the add-on wrote past these bytes
    bool isTerminated = true;  ///< false if none of these bytes is zero
};

/// Access to the strings of the checked host. Each host implements this interface.
class HostStringsInterface {
public:
    HostStringsInterface() = default;
    HostStringsInterface(const HostStringsInterface&) = delete;
    HostStringsInterface& operator=(const HostStringsInterface&) = delete;
    virtual ~HostStringsInterface() = default;

    /// Returns the state of \p string, which VexaUtilStringAlloc() returned and nobody has freed.
    /// \return the default state if the host cannot tell, so that no finding is made.
    virtual HostStringState stateOf(const char* string) const = 0;
};

}  // namespace vexa::standin
