/// \file
/// The table of the functions of the host's C API.
#pragma once

#include <optional>
#include <string_view>

#include "vexastandin/HostFunctions.h"

/// Each function with its role in a scope, that scope, and whether it may be called from any thread. The checks, the
/// log of calls, faults and observers take all functions from this table, so a new function is added here.
#define VEXASTANDIN_HOST_FUNCTIONS(FUNCTION)                                            \
    FUNCTION(VexaUtilLockStart, Begins, "lock", false)                                  \
    FUNCTION(VexaUtilLockFinish, Ends, "lock", false)                                   \
    FUNCTION(VexaUtilAuxDataBeginAssign, Begins, "auxiliary data", false)               \
    FUNCTION(VexaUtilAuxDataEndAssign, Ends, "auxiliary data", false)                   \
    FUNCTION(VexaUtilDataSetSuspendMarking, BeginsOrEnds, "marking", false)             \
    FUNCTION(VexaUtilZoneSolutionTimeModificationBegin, Begins, "solution time", false) \
    FUNCTION(VexaUtilZoneSolutionTimeModificationEnd, Ends, "solution time", false)     \
    FUNCTION(VexaUtilThreadMutexAlloc, None, "", true)                                  \
    FUNCTION(VexaUtilThreadMutexDealloc, None, "", true)                                \
    FUNCTION(VexaUtilThreadMutexLock, Begins, "mutex", true)                            \
    FUNCTION(VexaUtilThreadMutexUnlock, Ends, "mutex", true)                            \
    FUNCTION(VexaUtilMacroIsBatchModeActive, None, "", false)                           \
    FUNCTION(VexaUtilStatusStartPercentDone, Begins, "status line", false)              \
    FUNCTION(VexaUtilStatusCheckPercentDone, None, "", false)                           \
    FUNCTION(VexaUtilStatusSetPercentDoneText, None, "", false)                         \
    FUNCTION(VexaUtilStatusFinishPercentDone, Ends, "status line", false)               \
    FUNCTION(VexaUtilMacroIsRecordingActive, None, "", false)                           \
    FUNCTION(VexaUtilStateIsProcessingJournal, None, "", false)                         \
    FUNCTION(VexaUtilStateIsProcessingLayout, None, "", false)                          \
    FUNCTION(VexaUtilMacroRecordExtCommand, None, "", false)                            \
    FUNCTION(VexaUtilDataSetAddJournalCommand, None, "", false)                         \
    FUNCTION(VexaUtilStringAlloc, None, "", false)                                      \
    FUNCTION(VexaUtilStringDealloc, None, "", false)                                    \
    FUNCTION(VexaUtilArgListAlloc, None, "", false)                                     \
    FUNCTION(VexaUtilArgListDealloc, None, "", false)                                   \
    FUNCTION(VexaUtilArgListClear, None, "", false)                                     \
    FUNCTION(VexaUtilArgListAppendString, None, "", false)                              \
    FUNCTION(VexaUtilArgListAppendInt, None, "", false)                                 \
    FUNCTION(VexaUtilArgListAppendDoublePtr, None, "", false)                           \
    FUNCTION(VexaUtilArgListAppendArbParamPtr, None, "", false)                         \
    FUNCTION(VexaUtilStyleGetLowLevelX, None, "", false)                                \
    FUNCTION(VexaUtilDialogErrMsg, None, "", false)                                     \
    FUNCTION(VexaUtilSetAlloc, None, "", false)                                         \
    FUNCTION(VexaUtilSetDealloc, None, "", false)                                       \
    FUNCTION(VexaUtilSetInsert, None, "", false)                                        \
    FUNCTION(VexaUtilSetNextRange, None, "", false)

namespace vexa::standin {

/// One function of the host's C API.
enum class HostFunction {
#define VEXASTANDIN_ENUMERATOR(name, role, scope, anyThread) name,
    VEXASTANDIN_HOST_FUNCTIONS(VEXASTANDIN_ENUMERATOR)
#undef VEXASTANDIN_ENUMERATOR
};

/// Returns the entry of \p function in the table.
const HostFunctionInfo& infoOf(HostFunction function);

/// Returns the C name of \p function.
const char* nameOf(HostFunction function);

/// Returns the function with the C name \p name; nothing if there is none.
std::optional<HostFunction> findHostFunction(std::string_view name);

}  // namespace vexa::standin
