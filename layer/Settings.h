#pragma once

#include <string>

namespace vexa::layer {

/// What the process that started the program asks for.
struct Settings {
    std::string socket;     ///< where it listens for messages
    std::string entryName;  ///< the function that makes a shared object an add-on
    bool isTraced = false;  ///< whether it gets every call
};

}  // namespace vexa::layer
