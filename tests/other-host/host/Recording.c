/* The states of the host, its recording and its journal. The host only answers, and keeps no entries. */
#include <string.h>

#include "vexa/VexaUtil.h"

static int isEmpty(const char* text) { return text == NULL || *text == '\0'; }

VexaBoolean VexaUtilMacroIsBatchModeActive(void) { return 0; }
VexaBoolean VexaUtilMacroIsRecordingActive(void) { return 1; }
VexaBoolean VexaUtilStateIsProcessingJournal(void) { return 0; }
VexaBoolean VexaUtilStateIsProcessingLayout(void) { return 0; }

/* Blanks and line breaks are recorded as they are. */
VexaBoolean VexaUtilMacroRecordExtCommand(const char* addOnId, const char* command) {
    return !isEmpty(addOnId) && !isEmpty(command);
}

/* An entry needs its data. */
VexaBoolean VexaUtilDataSetAddJournalCommand(const char* addOnId, const char* command, const char* journalData) {
    return !isEmpty(addOnId) && !isEmpty(command) && journalData != NULL;
}
