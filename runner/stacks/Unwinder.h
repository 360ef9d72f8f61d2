#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "stacks/Registers.h"
#include "system/Descriptor.h"
#include "system/NonCopyable.h"

namespace vexa::runner {

/// A place in the code of a process.
struct UnwoundPlace {
    std::string object;         ///< the path; empty if the address is in none
    std::uintptr_t offset = 0;  ///< in the object; without an object, the address
};

/// The places on a stack, the innermost first. A return address is the place before it, which is in the calling line.
struct CodePlaces {
    std::vector<UnwoundPlace> places;
    std::size_t leftOut = 0;
    bool isCounted = true;  ///< false if there are more than leftOut, and counting them took too long
};

/// Follows the stacks of the threads of another process, which are stopped.
class Unwinder : NonCopyable {
public:
    /// \param memory the open file `/proc/PID/mem` of the process.
    Unwinder(pid_t process, const Descriptor& memory);
    ~Unwinder();

    /// Returns the places on the stack of a thread with these registers.
    CodePlaces placesOf(const Registers& registers);

private:
    class Session;
    std::unique_ptr<Session> m_session;
};

}  // namespace vexa::runner
