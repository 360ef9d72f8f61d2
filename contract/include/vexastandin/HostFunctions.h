#pragma once

#include <vector>

#include "vexastandin/Export.h"

namespace vexa::standin {

/// Says whether a call starts or finishes a scope, such as the time in which the lock is held.
enum class ScopeRole_e {
    None,         ///< the function belongs to no scope
    Begins,       ///< the call starts the scope
    Ends,         ///< the call finishes the scope
    BeginsOrEnds  ///< the call starts the scope if its argument is 1, and finishes it if the argument is 0
};

/// The type of a function's result, which decides how a call reports a failure.
enum class ResultKind_e {
    None,       ///< no result
    Handle,     ///< a handle or a string; null on failure
    Boolean,    ///< 0 on failure, or for the answer "no"
    ReturnCode  ///< the result of a style query
};

/// Describes a function of the host's C API.
struct HostFunctionInfo {
    const char* name;     ///< for example "VexaUtilLockStart"
    const char* scope;    ///< the function's scope, for example "lock"; empty if it has none
    ScopeRole_e role;     ///< whether a call starts or finishes the scope
    bool isForAnyThread;  ///< true if any thread may call the function
    ResultKind_e result;  ///< the type of the result
};

/// Returns all functions of the host's C API, in the order of its header.
VEXASTANDIN_API const std::vector<HostFunctionInfo>& hostFunctions();

}  // namespace vexa::standin
