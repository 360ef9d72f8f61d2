/* The status line and the error dialog. The host has no user, so it does not draw the line. */
#include <stdatomic.h>
#include <stdio.h>

#include "vexa/VexaUtil.h"

static atomic_int isShown;

void VexaUtilStatusStartPercentDone(const char* text, VexaBoolean showStopButton, VexaBoolean showBar) {
    (void)text, (void)showStopButton, (void)showBar;
    isShown = 1;
}

/* Answers 0, which means stop, if no status line is shown or the percentage is out of range. */
VexaBoolean VexaUtilStatusCheckPercentDone(int percent) { return isShown && percent >= 0 && percent <= 100; }

void VexaUtilStatusSetPercentDoneText(const char* text) { (void)text; }

void VexaUtilStatusFinishPercentDone(void) { isShown = 0; }

void VexaUtilDialogErrMsg(const char* message) {
    fprintf(stderr, "dialog: %s\n", message == NULL ? "(no message)" : message);
}
