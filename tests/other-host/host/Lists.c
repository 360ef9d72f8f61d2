#include "Lists.h"

#include <stdlib.h>
#include <string.h>

#include "Handles.h"

typedef enum { StringArgument_e, IntArgument_e, DoublePtrArgument_e, ArbParamPtrArgument_e } ArgumentKind_e;

typedef struct Argument_s {
    struct Argument_s* next;
    char* name;
    ArgumentKind_e kind;
    char* text;
    long number;
    void* address;
} Argument_s;

enum { kMostArguments = 64 };

struct ArgList_s {
    Argument_s* first;
    int count;
};

static void freeArgument(Argument_s* argument) {
    free(argument->name);
    free(argument->text);
    free(argument);
}

static void removeAll(ArgList_s* list) {
    while (list->first != NULL) {
        Argument_s* const first = list->first;
        list->first = first->next;
        freeArgument(first);
    }
    list->count = 0;
}

static const Argument_s* argumentNamed(const ArgList_s* list, const char* name) {
    const Argument_s* argument = list->first;
    while (argument != NULL && strcmp(argument->name, name) != 0) argument = argument->next;
    return argument;
}

static const Argument_s* argumentOfKind(const ArgList_s* list, const char* name, ArgumentKind_e kind) {
    const Argument_s* const argument = argumentNamed(list, name);
    return argument == NULL || argument->kind != kind ? NULL : argument;
}

static int mayAppend(const ArgList_s* list, const char* name) {
    if (!isHandle(ArgList_e, list) || name == NULL || *name == '\0') return 0;
    return list->count < kMostArguments && argumentNamed(list, name) == NULL;
}

/* `text` is null for all but a string. */
static VexaBoolean append(ArgList_s* list, const char* name, const Argument_s* value, const char* text) {
    if (!mayAppend(list, name)) return 0;
    Argument_s* const argument = malloc(sizeof *argument);
    if (argument == NULL) return 0;
    *argument = *value;
    argument->name = strdup(name);
    argument->text = text == NULL ? NULL : strdup(text);
    argument->next = list->first;
    list->first = argument;
    ++list->count;
    return 1;
}

ArgList_s* VexaUtilArgListAlloc(void) { return newHandle(ArgList_e, sizeof(ArgList_s)); }

void VexaUtilArgListDealloc(ArgList_s** argList) {
    if (argList == NULL || !forgetHandle(ArgList_e, *argList)) return;
    removeAll(*argList);
    freeHandle(*argList);
    *argList = NULL;
}

void VexaUtilArgListClear(ArgList_s* argList) {
    if (isHandle(ArgList_e, argList)) removeAll(argList);
}

VexaBoolean VexaUtilArgListAppendString(ArgList_s* argList, const char* name, const char* value) {
    const Argument_s argument = {.kind = StringArgument_e};
    return value != NULL && append(argList, name, &argument, value);
}

VexaBoolean VexaUtilArgListAppendInt(ArgList_s* argList, const char* name, long value) {
    const Argument_s argument = {.kind = IntArgument_e, .number = value};
    return append(argList, name, &argument, NULL);
}

VexaBoolean VexaUtilArgListAppendDoublePtr(ArgList_s* argList, const char* name, double* value) {
    const Argument_s argument = {.kind = DoublePtrArgument_e, .address = value};
    return value != NULL && append(argList, name, &argument, NULL);
}

VexaBoolean VexaUtilArgListAppendArbParamPtr(ArgList_s* argList, const char* name, VexaArbParam* value) {
    const Argument_s argument = {.kind = ArbParamPtrArgument_e, .address = value};
    return value != NULL && append(argList, name, &argument, NULL);
}

const char* stringArgument(const ArgList_s* list, const char* name) {
    const Argument_s* const argument = argumentOfKind(list, name, StringArgument_e);
    return argument == NULL ? NULL : argument->text;
}

const long* intArgument(const ArgList_s* list, const char* name) {
    const Argument_s* const argument = argumentOfKind(list, name, IntArgument_e);
    return argument == NULL ? NULL : &argument->number;
}

double* doublePtrArgument(const ArgList_s* list, const char* name) {
    const Argument_s* const argument = argumentOfKind(list, name, DoublePtrArgument_e);
    return argument == NULL ? NULL : argument->address;
}

VexaArbParam* arbParamPtrArgument(const ArgList_s* list, const char* name) {
    const Argument_s* const argument = argumentOfKind(list, name, ArbParamPtrArgument_e);
    return argument == NULL ? NULL : argument->address;
}
