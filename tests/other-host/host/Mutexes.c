#include <pthread.h>

#include "Handles.h"
#include "vexa/VexaUtil.h"

struct ThreadMutex_s {
    pthread_mutex_t mutex;
};

/* With PTHREAD_MUTEX_ERRORCHECK a wrong lock or unlock fails. It neither blocks forever nor breaks the mutex. */
ThreadMutex_s* VexaUtilThreadMutexAlloc(void) {
    ThreadMutex_s* const made = newHandle(Mutex_e, sizeof(ThreadMutex_s));
    if (made == NULL) return NULL;
    pthread_mutexattr_t kind;
    pthread_mutexattr_init(&kind);
    pthread_mutexattr_settype(&kind, PTHREAD_MUTEX_ERRORCHECK);
    pthread_mutex_init(&made->mutex, &kind);
    pthread_mutexattr_destroy(&kind);
    return made;
}

/* A mutex that is locked keeps its memory, because another thread may wait for it. */
void VexaUtilThreadMutexDealloc(ThreadMutex_s** mutex) {
    if (mutex == NULL || !forgetHandle(Mutex_e, *mutex)) return;
    if (pthread_mutex_destroy(&(*mutex)->mutex) == 0) freeHandle(*mutex);
    *mutex = NULL;
}

void VexaUtilThreadMutexLock(ThreadMutex_s* mutex) {
    if (isHandle(Mutex_e, mutex)) pthread_mutex_lock(&mutex->mutex);
}

void VexaUtilThreadMutexUnlock(ThreadMutex_s* mutex) {
    if (isHandle(Mutex_e, mutex)) pthread_mutex_unlock(&mutex->mutex);
}
