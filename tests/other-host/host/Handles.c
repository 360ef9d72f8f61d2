#include "Handles.h"

#include <pthread.h>
#include <stdlib.h>

/* Stands before each object, in the same piece of memory. */
typedef struct Header_s {
    struct Header_s* next;
    size_t size;
    HandleKind_e kind;
    max_align_t object[];
} Header_s;

enum { kBuckets = 1024, kSpareBytes = 16 /* for add-ons that write past the end of their strings */ };

static Header_s* buckets[kBuckets];
static pthread_mutex_t guard = PTHREAD_MUTEX_INITIALIZER;

static Header_s** bucketOf(const void* handle) { return &buckets[((size_t)handle >> 4) % kBuckets]; }

static Header_s* headerOf(void* handle) { return (Header_s*)handle - 1; }

/* The link that leads to the object; it leads to null if the object is not registered. Compares addresses only: the
   handle may be anything. */
static Header_s** linkTo(HandleKind_e kind, const void* handle) {
    Header_s** link = bucketOf(handle);
    while (*link != NULL && ((*link)->object != handle || (*link)->kind != kind)) link = &(*link)->next;
    return link;
}

void* newHandle(HandleKind_e kind, size_t size) {
    Header_s* const header = calloc(1, sizeof(Header_s) + size + kSpareBytes);
    if (header == NULL) return NULL;
    header->size = size;
    header->kind = kind;
    pthread_mutex_lock(&guard);
    Header_s** const bucket = bucketOf(header->object);
    header->next = *bucket;
    *bucket = header;
    pthread_mutex_unlock(&guard);
    return header->object;
}

size_t handleSize(HandleKind_e kind, const void* handle) {
    pthread_mutex_lock(&guard);
    const Header_s* const header = *linkTo(kind, handle);
    const size_t size = header == NULL ? 0 : header->size;
    pthread_mutex_unlock(&guard);
    return size;
}

int isHandle(HandleKind_e kind, const void* handle) { return handleSize(kind, handle) != 0; }

int forgetHandle(HandleKind_e kind, void* handle) {
    pthread_mutex_lock(&guard);
    Header_s** const link = linkTo(kind, handle);
    const int isKnown = *link != NULL;
    if (isKnown) *link = (*link)->next;
    pthread_mutex_unlock(&guard);
    return isKnown;
}

void freeHandle(void* handle) { free(headerOf(handle)); }
