#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vexa::runner {

/// A function on the stack of a thread, and the place in it.
struct Frame {
    std::string function;       ///< the name as in the source, with its parameters; empty if unknown
    std::string file;           ///< the path of the source; empty if the line is unknown
    std::size_t line = 0;       ///< the line in the source, counted from 1; 0 if unknown
    std::string object;         ///< the path of the program or shared object with the code
    std::uintptr_t offset = 0;  ///< of the place: in the function; in the object if the function is unknown
};

/// The frames of a stack, the innermost first.
using Stack = std::vector<Frame>;

}  // namespace vexa::runner
