/* The status line, and what else the host shows. Nobody looks at this host, so the line is not drawn. */
#include <stdatomic.h>
#include <stdio.h>

#include "vexa/VexaUtil.h"

static atomic_int isShown;

void VexaUtilStatusStartPercentDone(const char* text, VexaBoolean showStopButton, VexaBoolean showBar) {
    (void)text, (void)showStopButton, (void)showBar;
    isShown = 1;
}

/* Without a status line, and for a percentage that does not exist, the answer is: stop. */
VexaBoolean VexaUtilStatusCheckPercentDone(int percent) { return isShown && percent >= 0 && percent <= 100; }

void VexaUtilStatusSetPercentDoneText(const char* text) { (void)text; }

void VexaUtilStatusFinishPercentDone(void) { isShown = 0; }

void VexaUtilDialogErrMsg(const char* message) {
    fprintf(stderr, "dialog: %s\n", message == NULL ? "(no message)" : message);
}
