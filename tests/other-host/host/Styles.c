/* The style of the host: a table that never changes. */
#include <pthread.h>
#include <string.h>

#include "Handles.h"
#include "Lists.h"

enum { kMostKeywords = 6, kLongestPath = 200, kNoOffset = -1 };

typedef struct {
    const char* path; /* keywords with dots between them */
    long offset;      /* kNoOffset for a setting that has one value */
    enum { Number_e, Integer_e, Text_e, Members_e } type;
    double number;
    int64_t integer; /* of Members_e: the last of the members from 2 */
    const char* text;
} Setting_s;

static const Setting_s settings[] = {
    {"Text.NumberFormat.Precision", kNoOffset, Integer_e, 0, 4, NULL},
    {"Text.Height", kNoOffset, Number_e, 2.5, 0, NULL},
    {"Frame.Title.Text", kNoOffset, Text_e, 0, 0, "Shown by the other host"},
    {"FieldMap.ActiveFieldMaps", kNoOffset, Members_e, 0, 4, NULL},
    {"FieldMap.Contour.Level", 1, Number_e, 0.25, 0, NULL},
    {"FieldMap.Contour.Level", 2, Number_e, 0.75, 0, NULL},
};
enum { kSettings = sizeof settings / sizeof *settings };

static Set_s* setsOfSettings[kSettings];
static pthread_once_t setsOnce = PTHREAD_ONCE_INIT;

static void makeSets(void) {
    for (size_t i = 0; i != kSettings; ++i) {
        if (settings[i].type != Members_e) continue;
        setsOfSettings[i] = VexaUtilSetAlloc();
        VexaUtilSetInsert(setsOfSettings[i], 2, settings[i].integer);
    }
}

static const char* keywordOf(const ArgList_s* list, int number) {
    const char name[] = {'P', (char)('0' + number), '\0'};
    return stringArgument(list, name);
}

/* Writes the path of a query with dots between its keywords. Returns 0 if a keyword is missing or too long, or if there
   are more than six. */
static int readPath(const ArgList_s* list, char* path) {
    int count = 0;
    path[0] = '\0';
    for (const char* keyword; count != kMostKeywords && (keyword = keywordOf(list, count + 1)) != NULL; ++count) {
        if (strlen(path) + strlen(keyword) + sizeof "." > kLongestPath) return 0;
        if (count != 0) strcat(path, ".");
        strcat(path, keyword);
    }
    for (int later = count + 1; later <= kMostKeywords + 1; ++later) {
        if (keywordOf(list, later) != NULL) return 0;
    }
    return count != 0;
}

static long offsetOf(const ArgList_s* list, const char* name) {
    const long* const offset = intArgument(list, name);
    return offset == NULL ? 0 : *offset;
}

/* Finds the setting of a path at an offset. A path that has values only at other offsets is UnknownPath here. */
static GetValueReturnCode_e findSetting(const char* path, long offset1, long offset2, size_t* found) {
    GetValueReturnCode_e result = GetValueReturnCode_NotAvailable;
    for (size_t i = 0; i != kSettings; ++i) {
        if (strcmp(settings[i].path, path) != 0) continue;
        const long offset = settings[i].offset == kNoOffset ? 0 : settings[i].offset;
        *found = i;
        if (offset == offset1 && offset2 == 0) return GetValueReturnCode_Ok;
        result = GetValueReturnCode_UnknownPath;
    }
    return result;
}

/* Converts an integer to a double. */
static GetValueReturnCode_e storeNumber(const Setting_s* setting, double* number) {
    if (setting->type != Number_e && setting->type != Integer_e) return GetValueReturnCode_OtherType;
    *number = setting->type == Number_e ? setting->number : (double)setting->integer;
    return GetValueReturnCode_Ok;
}

static GetValueReturnCode_e storeParam(size_t index, VexaArbParam* param) {
    const Setting_s* const setting = &settings[index];
    switch (setting->type) {
        case Integer_e: *param = (VexaArbParam)setting->integer; return GetValueReturnCode_Ok;
        case Text_e: *param = (VexaArbParam)setting->text; return GetValueReturnCode_Ok;
        case Members_e: *param = (VexaArbParam)setsOfSettings[index]; return GetValueReturnCode_Ok;
        case Number_e: break;
    }
    return GetValueReturnCode_OtherType;
}

/* Answers NotAvailable for a path that does not exist. The case of letters matters. */
GetValueReturnCode_e VexaUtilStyleGetLowLevelX(ArgList_s* argList) {
    char path[kLongestPath];
    size_t index = kSettings;
    pthread_once(&setsOnce, makeSets);
    if (!isHandle(ArgList_e, argList) || !readPath(argList, path)) return GetValueReturnCode_NotAvailable;
    const GetValueReturnCode_e result =
        findSetting(path, offsetOf(argList, "Offset1"), offsetOf(argList, "Offset2"), &index);
    double* const number = doublePtrArgument(argList, "DValue");
    VexaArbParam* const param = arbParamPtrArgument(argList, "IValue");
    if (result != GetValueReturnCode_Ok) return result;
    if (number != NULL) return storeNumber(&settings[index], number);
    return param == NULL ? GetValueReturnCode_OtherType : storeParam(index, param);
}
