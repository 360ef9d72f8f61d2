/* In C, an exception that leaves an add-on finds no handler, and ends in abort(). The host jumps back from there. */
#include "Guard.h"

#include <setjmp.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>

static _Thread_local sigjmp_buf beforeTheCall;
static _Thread_local volatile sig_atomic_t isInAddOn;

static void onAbort(int number) {
    if (isInAddOn) siglongjmp(beforeTheCall, 1);
    signal(number, SIG_DFL);
    raise(number);
}

int callGuarded(Work_f work, void* data, char* why, int size) {
    struct sigaction action;
    memset(&action, 0, sizeof action);
    action.sa_handler = onAbort;
    sigaction(SIGABRT, &action, NULL);
    if (sigsetjmp(beforeTheCall, 1) != 0) {
        isInAddOn = 0;
        snprintf(why, (size_t)size, "the add-on aborted");
        return 0;
    }
    isInAddOn = 1;
    work(data);
    isInAddOn = 0;
    return 1;
}
