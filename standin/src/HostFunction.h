/// \file
/// The functions of the host's C API that the stand-in supplies.
#pragma once

#include <cstddef>
#include <string>

/// The one list of them: call recording and fault injection know a function by its entry here.
#define VEXASTANDIN_HOST_FUNCTIONS(FUNCTION)            \
    FUNCTION(VexaUtilLockStart)                         \
    FUNCTION(VexaUtilLockFinish)                        \
    FUNCTION(VexaUtilAuxDataBeginAssign)                \
    FUNCTION(VexaUtilAuxDataEndAssign)                  \
    FUNCTION(VexaUtilDataSetSuspendMarking)             \
    FUNCTION(VexaUtilZoneSolutionTimeModificationBegin) \
    FUNCTION(VexaUtilZoneSolutionTimeModificationEnd)   \
    FUNCTION(VexaUtilThreadMutexAlloc)                  \
    FUNCTION(VexaUtilThreadMutexDealloc)                \
    FUNCTION(VexaUtilThreadMutexLock)                   \
    FUNCTION(VexaUtilThreadMutexUnlock)                 \
    FUNCTION(VexaUtilMacroIsBatchModeActive)            \
    FUNCTION(VexaUtilStatusStartPercentDone)            \
    FUNCTION(VexaUtilStatusCheckPercentDone)            \
    FUNCTION(VexaUtilStatusSetPercentDoneText)          \
    FUNCTION(VexaUtilStatusFinishPercentDone)           \
    FUNCTION(VexaUtilMacroIsRecordingActive)            \
    FUNCTION(VexaUtilStateIsProcessingJournal)          \
    FUNCTION(VexaUtilStateIsProcessingLayout)           \
    FUNCTION(VexaUtilMacroRecordExtCommand)             \
    FUNCTION(VexaUtilDataSetAddJournalCommand)          \
    FUNCTION(VexaUtilStringAlloc)                       \
    FUNCTION(VexaUtilStringDealloc)                     \
    FUNCTION(VexaUtilArgListAlloc)                      \
    FUNCTION(VexaUtilArgListDealloc)                    \
    FUNCTION(VexaUtilArgListClear)                      \
    FUNCTION(VexaUtilArgListAppendString)               \
    FUNCTION(VexaUtilArgListAppendInt)                  \
    FUNCTION(VexaUtilArgListAppendDoublePtr)            \
    FUNCTION(VexaUtilArgListAppendArbParamPtr)          \
    FUNCTION(VexaUtilStyleGetLowLevelX)                 \
    FUNCTION(VexaUtilDialogErrMsg)                      \
    FUNCTION(VexaUtilSetAlloc)                          \
    FUNCTION(VexaUtilSetDealloc)                        \
    FUNCTION(VexaUtilSetInsert)                         \
    FUNCTION(VexaUtilSetNextRange)

namespace vexa::standin {

/// One function of the host's C API.
enum class HostFunction {
#define VEXASTANDIN_ENUMERATOR(name) name,
    VEXASTANDIN_HOST_FUNCTIONS(VEXASTANDIN_ENUMERATOR)
#undef VEXASTANDIN_ENUMERATOR
};

/// The C name of \p function.
const char* nameOf(HostFunction function);

/// The function of the C name \p name.
/// \throws vexa::InvalidArgumentException when there is none.
HostFunction hostFunction(const std::string& name);

}  // namespace vexa::standin
