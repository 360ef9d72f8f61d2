#pragma once

#include <stdexcept>

namespace probestats {

/// What reading, checking and writing fail with. The message is one line, fit to show a user.
class ProbeError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace probestats
