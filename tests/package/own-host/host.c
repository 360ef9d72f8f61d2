/* The smallest host: it has memory and a macro being recorded, and otherwise does nothing. */
#include <stdlib.h>
#include <string.h>

#include "vexa/VexaUtil.h"

char g_recorded[100];

VexaBoolean VexaUtilMacroIsRecordingActive(void) { return 1; }
VexaBoolean VexaUtilMacroRecordExtCommand(const char* addOnId, const char* command) {
    strncat(g_recorded, addOnId, sizeof g_recorded - strlen(g_recorded) - 1);
    strncat(g_recorded, command, sizeof g_recorded - strlen(g_recorded) - 1);
    return 1;
}
char* VexaUtilStringAlloc(int size, const char* purpose) {
    (void)purpose;
    return calloc((size_t)size, 1);
}
void VexaUtilStringDealloc(char** string) {
    free(*string);
    *string = NULL;
}

void VexaUtilLockStart(AddOnList_s* addOnId) { (void)addOnId; }
void VexaUtilLockFinish(AddOnList_s* addOnId) { (void)addOnId; }
void VexaUtilAuxDataBeginAssign(void) {}
void VexaUtilAuxDataEndAssign(void) {}
void VexaUtilDataSetSuspendMarking(VexaBoolean suspend) { (void)suspend; }
void VexaUtilZoneSolutionTimeModificationBegin(void) {}
void VexaUtilZoneSolutionTimeModificationEnd(void) {}
ThreadMutex_s* VexaUtilThreadMutexAlloc(void) { return (ThreadMutex_s*)g_recorded; /* for one thread, any will do */ }
void VexaUtilThreadMutexDealloc(ThreadMutex_s** mutex) { *mutex = NULL; }
void VexaUtilThreadMutexLock(ThreadMutex_s* mutex) { (void)mutex; }
void VexaUtilThreadMutexUnlock(ThreadMutex_s* mutex) { (void)mutex; }
VexaBoolean VexaUtilMacroIsBatchModeActive(void) { return 1; }
void VexaUtilStatusStartPercentDone(const char* text, VexaBoolean showStopButton, VexaBoolean showBar) {
    (void)text, (void)showStopButton, (void)showBar;
}
VexaBoolean VexaUtilStatusCheckPercentDone(int percent) { return (void)percent, 1; }
void VexaUtilStatusSetPercentDoneText(const char* text) { (void)text; }
void VexaUtilStatusFinishPercentDone(void) {}
VexaBoolean VexaUtilStateIsProcessingJournal(void) { return 0; }
VexaBoolean VexaUtilStateIsProcessingLayout(void) { return 0; }
VexaBoolean VexaUtilDataSetAddJournalCommand(const char* addOnId, const char* command, const char* journalData) {
    return (void)addOnId, (void)command, (void)journalData, 0;
}
ArgList_s* VexaUtilArgListAlloc(void) { return NULL; }
void VexaUtilArgListDealloc(ArgList_s** argList) { (void)argList; }
void VexaUtilArgListClear(ArgList_s* argList) { (void)argList; }
VexaBoolean VexaUtilArgListAppendString(ArgList_s* argList, const char* name, const char* value) {
    return (void)argList, (void)name, (void)value, 0;
}
VexaBoolean VexaUtilArgListAppendInt(ArgList_s* argList, const char* name, long value) {
    return (void)argList, (void)name, (void)value, 0;
}
VexaBoolean VexaUtilArgListAppendDoublePtr(ArgList_s* argList, const char* name, double* value) {
    return (void)argList, (void)name, (void)value, 0;
}
VexaBoolean VexaUtilArgListAppendArbParamPtr(ArgList_s* argList, const char* name, VexaArbParam* value) {
    return (void)argList, (void)name, (void)value, 0;
}
GetValueReturnCode_e VexaUtilStyleGetLowLevelX(ArgList_s* argList) {
    return (void)argList, GetValueReturnCode_NotAvailable;
}
void VexaUtilDialogErrMsg(const char* message) { (void)message; }
Set_s* VexaUtilSetAlloc(void) { return NULL; }
void VexaUtilSetDealloc(Set_s** set) { (void)set; }
VexaBoolean VexaUtilSetInsert(Set_s* set, int64_t first, int64_t last) { return (void)set, (void)first, (void)last, 0; }
VexaBoolean VexaUtilSetNextRange(const Set_s* set, int64_t from, int64_t* first, int64_t* last) {
    return (void)set, (void)from, (void)first, (void)last, 0;
}
