#pragma once

#include <vector>

#include "vexastandin/Export.h"

namespace vexa::standin {

/// What a call does to the scope its function belongs to.
enum class ScopeRole_e {
    None,         ///< its function belongs to no scope
    Begins,       ///< opens one
    Ends,         ///< closes one
    BeginsOrEnds  ///< opens one when its argument is 1, closes one when it is 0
};

/// What a function returns, and so how a call of it can be seen to fail.
enum class ResultKind_e {
    None,       ///< nothing
    Handle,     ///< a handle or a string; null when it fails
    Boolean,    ///< 0 when it fails, or for no
    ReturnCode  ///< how a style query came out
};

/// What there is to know about a function of the host's C API.
struct HostFunctionInfo {
    const char* name;     ///< for example "VexaUtilLockStart"
    const char* scope;    ///< the scope it belongs to, for example "lock"; empty when there is none
    ScopeRole_e role;     ///< what it does to its scope
    bool isForAnyThread;  ///< whether it may be called from any thread
    ResultKind_e result;  ///< what it returns
};

/// Every function of the host's C API, in the order of its header.
VEXASTANDIN_API const std::vector<HostFunctionInfo>& hostFunctions();

}  // namespace vexa::standin
