/* The lock, and the scopes in which the host sends no broadcasts and marks no data sets. */
#include <pthread.h>
#include <stdatomic.h>

#include "ForTheProgram.h"

/* One lock for all identities. A thread may take it again, so it is PTHREAD_MUTEX_RECURSIVE. */
static pthread_mutex_t lock;
static pthread_once_t lockOnce = PTHREAD_ONCE_INIT;
static atomic_int quietScopes;

static void initLock(void) {
    pthread_mutexattr_t kind;
    pthread_mutexattr_init(&kind);
    pthread_mutexattr_settype(&kind, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&lock, &kind);
    pthread_mutexattr_destroy(&kind);
}

void VexaUtilLockStart(AddOnList_s* addOnId) {
    (void)addOnId;
    pthread_once(&lockOnce, initLock);
    pthread_mutex_lock(&lock);
}

void VexaUtilLockFinish(AddOnList_s* addOnId) {
    (void)addOnId;
    pthread_once(&lockOnce, initLock);
    pthread_mutex_unlock(&lock); /* fails without harm on a thread that does not hold it */
}

void otherHostReleaseLock(void) {
    pthread_once(&lockOnce, initLock);
    while (pthread_mutex_unlock(&lock) == 0) continue;
}

/* This host has no data sets and sends no broadcasts, so it only counts the scopes. */
void VexaUtilAuxDataBeginAssign(void) { ++quietScopes; }
void VexaUtilAuxDataEndAssign(void) { --quietScopes; }
void VexaUtilDataSetSuspendMarking(VexaBoolean suspend) { quietScopes += suspend ? 1 : -1; }
void VexaUtilZoneSolutionTimeModificationBegin(void) { ++quietScopes; }
void VexaUtilZoneSolutionTimeModificationEnd(void) { --quietScopes; }
