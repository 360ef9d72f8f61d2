// Sets.

#include <cstdint>
#include <limits>

#include "probe/questions/Owned.h"
#include "probe/questions/Questions.h"

namespace vexa::probe {
namespace {

constexpr int kMostRuns = 20;  // a host may return the same run forever
constexpr int64_t kUnused = -7777;

struct Run {
    int64_t first = kUnused;
    int64_t last = kUnused;
};

bool operator==(const Run& one, const Run& other) { return one.first == other.first && one.last == other.last; }

OwnedSet newSet() { return OwnedSet(VexaUtilSetAlloc()); }

bool inserts(const OwnedSet& set, Run run) { return VexaUtilSetInsert(set.get(), run.first, run.last) != 0; }

bool finds(const OwnedSet& set, int64_t from, Run& run) {
    return VexaUtilSetNextRange(set.get(), from, &run.first, &run.last) != 0;
}

std::string textOf(const Run& run) {
    const std::string first = std::to_string(run.first);
    return run.first == run.last ? first : first + '-' + std::to_string(run.last);
}

// The runs as the host returns them: "[1-3,5]".
std::string runsOf(const OwnedSet& set) {
    std::string text;
    int64_t from = 0;
    Run run;
    for (int i = 0; i != kMostRuns && finds(set, from, run); ++i) {
        text += (text.empty() ? "" : ",") + textOf(run);
        if (run.last == std::numeric_limits<int64_t>::max()) break;
        from = run.last + 1;
    }
    return '[' + text + ']';
}

// The set with the members 4 to 8.
OwnedSet filledSet() {
    OwnedSet set = newSet();
    if (!inserts(set, {4, 8})) throw Unanswerable("the host refused the range 4-8");
    return set;
}

Answer clearsSetHandle(const Circumstances&) { return newSet().isClearedWhenFreed(); }

std::string runsAfter(Run one, Run other) {
    const OwnedSet set = newSet();
    if (!inserts(set, one) || !inserts(set, other)) throw Unanswerable("the host refused one of the ranges");
    return runsOf(set);
}

Answer touching(const Circumstances&) { return runsAfter({1, 3}, {4, 6}); }

Answer overlapping(const Circumstances&) { return runsAfter({1, 5}, {3, 8}); }

Answer insertsTwice(const Circumstances&) { return inserts(filledSet(), {4, 8}); }

// What the host does with an odd range. \p usual is what it may have inserted in its place, and the word for that.
std::string fateOf(Run odd, Run usual, const char* word) {
    const OwnedSet set = newSet();
    if (!inserts(set, odd)) return "refused";
    const std::string runs = runsOf(set);
    if (runs == "[]") return "ignored";
    return runs == '[' + textOf(usual) + ']' ? word : runs;
}

Answer reversed(const Circumstances&) { return fateOf({6, 4}, {4, 6}, "swapped"); }

Answer negativeRange(const Circumstances&) { return fateOf({-3, 2}, {0, 2}, "clipped"); }

Answer takesLargest(const Circumstances&) {
    constexpr int64_t kLargest = std::numeric_limits<int64_t>::max();
    const OwnedSet set = newSet();
    Run run;
    return inserts(set, {kLargest, kLargest}) && finds(set, kLargest, run) && run == Run{kLargest, kLargest};
}

Answer fromInside(const Circumstances&) {
    Run run;
    if (!finds(filledSet(), 6, run)) return std::string("nothing");
    if (run == Run{4, 8}) return std::string("whole");
    return run == Run{6, 8} ? "rest" : textOf(run);
}

Answer fromNegative(const Circumstances&) {
    Run run;
    return finds(filledSet(), -1, run) && run == Run{4, 8};
}

Answer keepsOutputs(const Circumstances&) {
    Run run;
    if (finds(newSet(), 0, run)) throw Unanswerable("the host found a run in an empty set");
    return run == Run();
}

}  // namespace

std::vector<Question> setQuestions() {
    using facts::Fact;
    return {{Fact::SetDeallocClearsHandle, clearsSetHandle},
            {Fact::SetInsertTouching, touching},
            {Fact::SetInsertOverlapping, overlapping},
            {Fact::SetInsertTwice, insertsTwice},
            {Fact::SetInsertReversed, reversed},
            {Fact::SetInsertNegative, negativeRange},
            {Fact::SetInsertLargest, takesLargest},
            {Fact::SetNextRangeInside, fromInside},
            {Fact::SetNextRangeNegativeFrom, fromNegative},
            {Fact::SetNextRangeKeepsOutputs, keepsOutputs}};
}

}  // namespace vexa::probe
