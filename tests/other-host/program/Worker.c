#include "Worker.h"

#include <pthread.h>
#include <stddef.h>

static pthread_mutex_t guard = PTHREAD_MUTEX_INITIALIZER;
static pthread_cond_t changed = PTHREAD_COND_INITIALIZER;
static pthread_once_t once = PTHREAD_ONCE_INIT;
static void (*currentWork)(void* data); /* null while the worker is idle */
static void* currentData;

static void* workForever(void* unused) {
    (void)unused;
    pthread_mutex_lock(&guard);
    for (;;) {
        while (currentWork == NULL) pthread_cond_wait(&changed, &guard);
        pthread_mutex_unlock(&guard);
        currentWork(currentData);
        pthread_mutex_lock(&guard);
        currentWork = NULL;
        pthread_cond_broadcast(&changed);
    }
    return NULL;
}

static void startWorker(void) {
    pthread_t worker;
    pthread_create(&worker, NULL, workForever, NULL);
    pthread_detach(worker);
}

void runOnWorker(void (*work)(void* data), void* data) {
    pthread_once(&once, startWorker);
    pthread_mutex_lock(&guard);
    currentData = data;
    currentWork = work;
    pthread_cond_broadcast(&changed);
    while (currentWork != NULL) pthread_cond_wait(&changed, &guard);
    pthread_mutex_unlock(&guard);
}
