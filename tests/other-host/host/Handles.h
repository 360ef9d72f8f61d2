/* The objects that the host has given to add-ons. An address that is not among them is refused, so no fault of an
   add-on makes the host read freed or foreign memory. */
#pragma once

#include <stddef.h>

typedef enum { Mutex_e, ArgList_e, Set_e, String_e } HandleKind_e;

/* Allocates an object of `size` bytes, all zero, and registers it. Returns null without memory. */
void* newHandle(HandleKind_e kind, size_t size);
/* Whether `handle` is a registered object of this kind. */
int isHandle(HandleKind_e kind, const void* handle);
/* The size that newHandle() was given; 0 if the handle is not registered. */
size_t handleSize(HandleKind_e kind, const void* handle);
/* Removes the object from the register. Returns 1 if it was there; the caller then calls freeHandle(). */
int forgetHandle(HandleKind_e kind, void* handle);
/* Frees the memory of a forgotten object. */
void freeHandle(void* handle);
