#pragma once

#include <stdexcept>

namespace probestats {

/// Reports why a command failed. The message is one line for the user.
class ProbeError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace probestats
