#pragma once

#include <cstdint>

#include "vexa/VexaUtil.h"

namespace vexa::standin {

/// A function of the host's C API, and a call of it that brings in nothing but null and harmless values.
struct HarmlessCall {
    const char* function;
    void (*call)();
};

/// Every function of the host's C API.
inline constexpr HarmlessCall kEveryFunction[] = {
    {"VexaUtilLockStart", [] { VexaUtilLockStart(nullptr); }},
    {"VexaUtilLockFinish", [] { VexaUtilLockFinish(nullptr); }},
    {"VexaUtilAuxDataBeginAssign", [] { VexaUtilAuxDataBeginAssign(); }},
    {"VexaUtilAuxDataEndAssign", [] { VexaUtilAuxDataEndAssign(); }},
    {"VexaUtilDataSetSuspendMarking", [] { VexaUtilDataSetSuspendMarking(1); }},
    {"VexaUtilZoneSolutionTimeModificationBegin", [] { VexaUtilZoneSolutionTimeModificationBegin(); }},
    {"VexaUtilZoneSolutionTimeModificationEnd", [] { VexaUtilZoneSolutionTimeModificationEnd(); }},
    {"VexaUtilThreadMutexAlloc", [] { VexaUtilThreadMutexAlloc(); }},
    {"VexaUtilThreadMutexDealloc", [] { VexaUtilThreadMutexDealloc(nullptr); }},
    {"VexaUtilThreadMutexLock", [] { VexaUtilThreadMutexLock(nullptr); }},
    {"VexaUtilThreadMutexUnlock", [] { VexaUtilThreadMutexUnlock(nullptr); }},
    {"VexaUtilMacroIsBatchModeActive", [] { VexaUtilMacroIsBatchModeActive(); }},
    {"VexaUtilStatusStartPercentDone", [] { VexaUtilStatusStartPercentDone(nullptr, 1, 1); }},
    {"VexaUtilStatusCheckPercentDone", [] { VexaUtilStatusCheckPercentDone(1); }},
    {"VexaUtilStatusSetPercentDoneText", [] { VexaUtilStatusSetPercentDoneText(nullptr); }},
    {"VexaUtilStatusFinishPercentDone", [] { VexaUtilStatusFinishPercentDone(); }},
    {"VexaUtilMacroIsRecordingActive", [] { VexaUtilMacroIsRecordingActive(); }},
    {"VexaUtilStateIsProcessingJournal", [] { VexaUtilStateIsProcessingJournal(); }},
    {"VexaUtilStateIsProcessingLayout", [] { VexaUtilStateIsProcessingLayout(); }},
    {"VexaUtilMacroRecordExtCommand", [] { VexaUtilMacroRecordExtCommand(nullptr, nullptr); }},
    {"VexaUtilDataSetAddJournalCommand", [] { VexaUtilDataSetAddJournalCommand(nullptr, nullptr, nullptr); }},
    {"VexaUtilStringAlloc", [] { VexaUtilStringAlloc(1, nullptr); }},
    {"VexaUtilStringDealloc", [] { VexaUtilStringDealloc(nullptr); }},
    {"VexaUtilArgListAlloc", [] { VexaUtilArgListAlloc(); }},
    {"VexaUtilArgListDealloc", [] { VexaUtilArgListDealloc(nullptr); }},
    {"VexaUtilArgListClear", [] { VexaUtilArgListClear(nullptr); }},
    {"VexaUtilArgListAppendString", [] { VexaUtilArgListAppendString(nullptr, nullptr, nullptr); }},
    {"VexaUtilArgListAppendInt", [] { VexaUtilArgListAppendInt(nullptr, nullptr, 1); }},
    {"VexaUtilArgListAppendDoublePtr", [] { VexaUtilArgListAppendDoublePtr(nullptr, nullptr, nullptr); }},
    {"VexaUtilArgListAppendArbParamPtr", [] { VexaUtilArgListAppendArbParamPtr(nullptr, nullptr, nullptr); }},
    {"VexaUtilStyleGetLowLevelX", [] { VexaUtilStyleGetLowLevelX(nullptr); }},
    {"VexaUtilDialogErrMsg", [] { VexaUtilDialogErrMsg(nullptr); }},
    {"VexaUtilSetAlloc", [] { VexaUtilSetAlloc(); }},
    {"VexaUtilSetDealloc", [] { VexaUtilSetDealloc(nullptr); }},
    {"VexaUtilSetInsert", [] { VexaUtilSetInsert(nullptr, 1, 2); }},
    {"VexaUtilSetNextRange", [] { VexaUtilSetNextRange(nullptr, 1, nullptr, nullptr); }},
};

}  // namespace vexa::standin
