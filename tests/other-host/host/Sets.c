#include <stdlib.h>
#include <string.h>

#include "Handles.h"
#include "vexa/VexaUtil.h"

/* Ranges in ascending order. They do not overlap, but may touch. */
typedef struct {
    int64_t first;
    int64_t last;
} Range_s;

struct Set_s {
    Range_s* ranges;
    size_t count;
};

static int doOverlap(Range_s a, Range_s b) { return a.first <= b.last && b.first <= a.last; }

static Range_s unionOf(Range_s a, Range_s b) {
    return (Range_s){a.first < b.first ? a.first : b.first, a.last > b.last ? a.last : b.last};
}

/* Adds a range, and merges it with the ranges that overlap it. */
static int insertRange(Set_s* set, Range_s range) {
    Range_s* const ranges = realloc(set->ranges, (set->count + 1) * sizeof *ranges);
    if (ranges == NULL) return 0;
    set->ranges = ranges;
    size_t kept = 0;
    for (size_t i = 0; i != set->count; ++i) {
        if (doOverlap(ranges[i], range)) {
            range = unionOf(ranges[i], range);
        } else {
            ranges[kept++] = ranges[i];
        }
    }
    size_t place = 0;
    while (place != kept && ranges[place].first < range.first) ++place;
    memmove(&ranges[place + 1], &ranges[place], (kept - place) * sizeof *ranges);
    ranges[place] = range;
    set->count = kept + 1;
    return 1;
}

Set_s* VexaUtilSetAlloc(void) { return newHandle(Set_e, sizeof(Set_s)); }

void VexaUtilSetDealloc(Set_s** set) {
    if (set == NULL || !forgetHandle(Set_e, *set)) return;
    free((*set)->ranges);
    freeHandle(*set);
    *set = NULL;
}

/* Swaps the ends of a reversed range, and refuses the largest integer. */
VexaBoolean VexaUtilSetInsert(Set_s* set, int64_t first, int64_t last) {
    const Range_s range = first <= last ? (Range_s){first, last} : (Range_s){last, first};
    if (!isHandle(Set_e, set) || range.first < 0 || range.last == INT64_MAX) return 0;
    return insertRange(set, range);
}

VexaBoolean VexaUtilSetNextRange(const Set_s* set, int64_t from, int64_t* first, int64_t* last) {
    if (!isHandle(Set_e, set) || first == NULL || last == NULL) return 0;
    for (size_t i = 0; i != set->count; ++i) {
        if (set->ranges[i].last < from) continue;
        *first = set->ranges[i].first;
        *last = set->ranges[i].last;
        return 1;
    }
    return 0;
}
