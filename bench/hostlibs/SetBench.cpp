// Compares Set with the least code that does the same work, and with a tree of intervals.

#include <algorithm>
#include <boost/icl/interval_set.hpp>
#include <charconv>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "support/Rows.h"
#include "vexa/toolbox/Set.h"

#if defined(VEXA_HAS_HWLOC)
#include <hwloc.h>
#endif

namespace {

using vexa::bench::addSubject;
using vexa::toolbox::Set;
using Range = Set::Range;
using Ranges = std::vector<Range>;
using Tree = boost::icl::interval_set<int64_t>;

constexpr int64_t kRuns = 1000;

enum class Order { Ascending, Random };

// Returns runs of 1 to 8 members, 2 to 9 apart. They are the same in every run of the program.
Ranges makeRuns(int64_t count, Order order) {
    std::mt19937 random(42);
    std::uniform_int_distribution<int64_t> upToSeven(0, 7);
    Ranges runs;
    int64_t next = 0;
    for (int64_t i = 0; i < count; ++i) {
        const int64_t first = next + upToSeven(random);
        const int64_t last = first + upToSeven(random);
        runs.push_back({first, last});
        next = last + 2;
    }
    if (order == Order::Random) std::shuffle(runs.begin(), runs.end(), random);
    return runs;
}

std::string makeText(const Ranges& runs) {
    std::string text = "[";
    for (const Range& run : runs) {
        text += std::to_string(run.first);
        if (run.last != run.first) text += "-" + std::to_string(run.last);
        text += ",";
    }
    text.back() = ']';
    return text;
}

std::string makeText(benchmark::State& state, Order order) { return makeText(makeRuns(kRuns * state.range(0), order)); }

Set makeSet(int64_t runs) {
    Set set;
    set.assign(makeText(makeRuns(runs, Order::Ascending)));
    return set;
}

Tree makeTree(int64_t runs) {
    Tree tree;
    for (const Range& run : makeRuns(runs, Order::Ascending)) {
        tree.insert(tree.end(), boost::icl::interval<int64_t>::closed(run.first, run.last));
    }
    return tree;
}

// The least code that reads a set: no blanks, no checks, no order.
Ranges readByDigitLoop(const std::string& text) {
    Ranges ranges;
    const char* at = text.c_str() + 1;
    const auto number = [&at] {
        int64_t value = 0;
        while (*at >= '0' && *at <= '9') value = value * 10 + (*at++ - '0');
        return value;
    };
    while (*at != '\0') {
        const int64_t first = number();
        int64_t last = first;
        if (*at == '-') {
            ++at;
            last = number();
        }
        ranges.push_back({first, last});
        ++at;  // the comma, or the bracket
    }
    return ranges;
}

// Does the same, and sorts the ranges, as any set must.
Ranges readByDigitLoopAndSort(const std::string& text) {
    Ranges ranges = readByDigitLoop(text);
    std::sort(ranges.begin(), ranges.end(), [](const Range& a, const Range& b) { return a.first < b.first; });
    return ranges;
}

// ---- Reading

template <class Read>
void read(benchmark::State& state, Order order, Read read) {
    const std::string text = makeText(state, order);
    for (auto _ : state) {
        auto set = read(text);
        benchmark::DoNotOptimize(set);
    }
}

Set readOurs(const std::string& text) {
    Set set;
    set.assign(text);
    return set;
}

Tree readIntoTree(const std::string& text) {
    Tree tree;
    for (const Range& run : readByDigitLoop(text)) {
        tree.insert(boost::icl::interval<int64_t>::closed(run.first, run.last));
    }
    return tree;
}

#if defined(VEXA_HAS_HWLOC)
void readByHwloc(benchmark::State& state, Order order) {
    std::string text = makeText(state, order);
    text = text.substr(1, text.size() - 2);  // no brackets
    for (auto _ : state) {
        hwloc_bitmap_t bitmap = hwloc_bitmap_alloc();
        if (hwloc_bitmap_list_sscanf(bitmap, text.c_str()) != 0) state.SkipWithError("the list was refused");
        benchmark::DoNotOptimize(bitmap);
        hwloc_bitmap_free(bitmap);
    }
}
#endif

void addReading(const std::string& row, Order order) {
    using State = benchmark::State;
    addSubject(row + "/digit_loop", [=](State& state) { read(state, order, readByDigitLoop); });
    addSubject(row + "/digit_loop_and_sort", [=](State& state) { read(state, order, readByDigitLoopAndSort); });
    addSubject(row + "/interval_tree", [=](State& state) { read(state, order, readIntoTree); });
    addSubject(row + "/ours", [=](State& state) { read(state, order, readOurs); });
#if defined(VEXA_HAS_HWLOC)
    addSubject(row + "/hwloc", [=](State& state) { readByHwloc(state, order); });
#endif
}

// ---- Writing

void toString(benchmark::State& state) {
    const Set set = makeSet(kRuns * state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(set.toString());
}

// The least code that writes a text of unknown size: it fills chunks and appends each full chunk to the text.
void toCharsIntoChunks(benchmark::State& state) {
    const Set set = makeSet(kRuns * state.range(0));
    for (auto _ : state) {
        constexpr std::ptrdiff_t kLongestRun = 40;
        std::string text;
        std::vector<char> chunk(4096);
        char* const end = chunk.data() + chunk.size();
        char* at = chunk.data();
        char before = '[';
        for (const Range& run : set.ranges()) {
            if (end - at < kLongestRun + 1) {
                text.append(chunk.data(), at);
                at = chunk.data();
            }
            *at++ = before;
            at = std::to_chars(at, end, run.first).ptr;
            if (run.last != run.first) {
                *at++ = '-';
                at = std::to_chars(at, end, run.last).ptr;
            }
            before = ',';
        }
        *at++ = ']';
        text.append(chunk.data(), at);
        benchmark::DoNotOptimize(text);
    }
}

// ---- Use, against a tree of intervals

// Returns numbers from the whole range of the set. They are the same in every run of the program.
std::vector<int64_t> makeProbes(const Set& set) {
    std::mt19937_64 random(7);
    std::uniform_int_distribution<int64_t> anywhere(0, set.ranges().back().last);
    std::vector<int64_t> probes(1024);
    for (int64_t& probe : probes) probe = anywhere(random);
    return probes;
}

bool isIn(const Set& set, int64_t member) { return set.contains(member); }
bool isIn(const Tree& tree, int64_t member) { return boost::icl::contains(tree, member); }

// Measures 1024 calls of contains().
template <class Members>
void contains(benchmark::State& state, Members (*make)(int64_t)) {
    const Members members = make(kRuns * state.range(0));
    const std::vector<int64_t> probes = makeProbes(makeSet(kRuns * state.range(0)));
    for (auto _ : state) {
        for (const int64_t probe : probes) benchmark::DoNotOptimize(isIn(members, probe));
    }
}

// Measures 1024 insertions of single members at random places of a large set: the worst case for a vector.
template <class Members>
void insert(benchmark::State& state, Members (*make)(int64_t)) {
    const Members before = make(kRuns * state.range(0));
    const std::vector<int64_t> probes = makeProbes(makeSet(kRuns * state.range(0)));
    for (auto _ : state) {
        Members members = before;
        for (const int64_t probe : probes) members.insert(probe);
        benchmark::DoNotOptimize(members);
    }
}

template <class Members>
void copy(benchmark::State& state, Members (*make)(int64_t)) {
    const Members members = make(kRuns * state.range(0));
    for (auto _ : state) {
        Members copied = members;
        benchmark::DoNotOptimize(copied);
    }
}

void iterate(benchmark::State& state) {
    const Set set = makeSet(kRuns * state.range(0));
    for (auto _ : state) {
        int64_t sum = 0;
        for (const int64_t member : set) sum += member;
        benchmark::DoNotOptimize(sum);
    }
}

void iterateTree(benchmark::State& state) {
    const Tree tree = makeTree(kRuns * state.range(0));
    for (auto _ : state) {
        int64_t sum = 0;
        for (auto member = boost::icl::elements_begin(tree); member != boost::icl::elements_end(tree); ++member) {
            sum += *member;
        }
        benchmark::DoNotOptimize(sum);
    }
}

// ----

const bool isAdded = [] {
    using State = benchmark::State;
    addReading("set-assign", Order::Ascending);
    addReading("set-assign-random", Order::Random);
    addSubject("set-to-string/ours", toString);
    addSubject("set-to-string/to_chars", toCharsIntoChunks);
    addSubject("set-contains/ours", [](State& state) { contains(state, makeSet); });
    addSubject("set-contains/interval_tree", [](State& state) { contains(state, makeTree); });
    addSubject("set-insert/ours", [](State& state) { insert(state, makeSet); });
    addSubject("set-insert/interval_tree", [](State& state) { insert(state, makeTree); });
    addSubject("set-copy/ours", [](State& state) { copy(state, makeSet); });
    addSubject("set-copy/interval_tree", [](State& state) { copy(state, makeTree); });
    addSubject("set-iterate/ours", iterate);
    addSubject("set-iterate/interval_tree", iterateTree);
    return true;
}();

}  // namespace
