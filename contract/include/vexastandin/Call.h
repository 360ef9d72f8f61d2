#pragma once

#include <cstddef>
#include <string>
#include <thread>

namespace vexa::standin {

/// A call of a function of the host's C API.
struct Call {
    std::string function;  ///< for example "VexaUtilStringAlloc"
    /// The arguments as in C: `14, "error string"`, `null`. A handle is written with its number: `mutex#1`. An add-on's
    /// identity is written as its id. `unknown` is a handle or an identity that the host does not know. `address` is
    /// the address of a result.
    std::string arguments;
    std::string result;      ///< the result as in C; empty for no result, after an exception, and before the return
    std::thread::id thread;  ///< the calling thread
    std::size_t number = 0;  ///< the number of the call, counted from 1 over all calls, including those not kept
};

}  // namespace vexa::standin
