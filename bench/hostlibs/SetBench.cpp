// What a Set costs, against the least that the same work can cost, and against a tree of intervals.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <boost/icl/interval_set.hpp>
#include <charconv>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "vexa/VexaUtil.h"
#include "vexa/toolbox/Set.h"
#include "vexastandin/Host.h"

namespace {

using vexa::toolbox::Set;
using Range = Set::Range;
using Ranges = std::vector<Range>;
using Tree = boost::icl::interval_set<int64_t>;

constexpr int64_t kFewRuns = 1000;
constexpr int64_t kManyRuns = 100000;

enum class Order { Ascending, Random };

// Runs of 1 to 8 members, 2 to 9 apart; the same ones each time.
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

// The least that reading takes: no blanks, no check, no order.
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

Ranges readByFromChars(const std::string& text) {
    Ranges ranges;
    const char* const end = text.data() + text.size();
    for (const char* at = text.data() + 1; at != end; ++at) {
        Range range{0, 0};
        at = std::from_chars(at, end, range.first).ptr;
        range.last = range.first;
        if (*at == '-') at = std::from_chars(at + 1, end, range.last).ptr;
        ranges.push_back(range);
    }
    return ranges;
}

// The same with what any such set needs besides: the ranges in order.
Ranges readByDigitLoopAndSort(const std::string& text) {
    Ranges ranges = readByDigitLoop(text);
    std::sort(ranges.begin(), ranges.end(), [](const Range& a, const Range& b) { return a.first < b.first; });
    return ranges;
}

void bothSizes(benchmark::internal::Benchmark* bench) { bench->Arg(kFewRuns)->Arg(kManyRuns); }

void assign(benchmark::State& state, Order order) {
    const std::string text = makeText(makeRuns(state.range(0), order));
    for (auto _ : state) {
        Set set;
        set.assign(text);
        benchmark::DoNotOptimize(set);
    }
}
BENCHMARK_CAPTURE(assign, ascending, Order::Ascending)->Apply(bothSizes);
BENCHMARK_CAPTURE(assign, random, Order::Random)->Apply(bothSizes);

void readRanges(benchmark::State& state, Ranges (*read)(const std::string&), Order order) {
    const std::string text = makeText(makeRuns(state.range(0), order));
    for (auto _ : state) {
        Ranges ranges = read(text);
        benchmark::DoNotOptimize(ranges);
    }
}
BENCHMARK_CAPTURE(readRanges, digitLoop_ascending, readByDigitLoop, Order::Ascending)->Apply(bothSizes);
BENCHMARK_CAPTURE(readRanges, digitLoop_random, readByDigitLoop, Order::Random)->Apply(bothSizes);
BENCHMARK_CAPTURE(readRanges, digitLoopAndSort_random, readByDigitLoopAndSort, Order::Random)->Apply(bothSizes);
BENCHMARK_CAPTURE(readRanges, fromChars_ascending, readByFromChars, Order::Ascending)->Apply(bothSizes);
BENCHMARK_CAPTURE(readRanges, fromChars_random, readByFromChars, Order::Random)->Apply(bothSizes);

void readIntoTree(benchmark::State& state, Order order) {
    const std::string text = makeText(makeRuns(state.range(0), order));
    for (auto _ : state) {
        Tree tree;
        for (const Range& run : readByDigitLoop(text)) {
            tree.insert(boost::icl::interval<int64_t>::closed(run.first, run.last));
        }
        benchmark::DoNotOptimize(tree);
    }
}
BENCHMARK_CAPTURE(readIntoTree, ascending, Order::Ascending)->Apply(bothSizes);
BENCHMARK_CAPTURE(readIntoTree, random, Order::Random)->Apply(bothSizes);

void setToString(benchmark::State& state) {
    const Set set = makeSet(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(set.toString());
}
BENCHMARK(setToString)->Apply(bothSizes);

// The least that writing takes, into a buffer whose size is known from the start.
void toCharsIntoOneBuffer(benchmark::State& state) {
    const Set set = makeSet(state.range(0));
    const std::size_t size = set.toString().size();
    for (auto _ : state) {
        std::string text(size, '\0');
        char* const end = text.data() + size;
        char* at = text.data();
        char before = '[';
        for (const Range& run : set.ranges()) {
            *at++ = before;
            at = std::to_chars(at, end, run.first).ptr;
            if (run.last != run.first) {
                *at++ = '-';
                at = std::to_chars(at, end, run.last).ptr;
            }
            before = ',';
        }
        *at = ']';
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(toCharsIntoOneBuffer)->Apply(bothSizes);

// Numbers all over the set, the same ones each time.
std::vector<int64_t> makeProbes(const Set& set) {
    std::mt19937_64 random(7);
    std::uniform_int_distribution<int64_t> anywhere(0, set.ranges().back().last);
    std::vector<int64_t> probes(1024);
    for (int64_t& probe : probes) probe = anywhere(random);
    return probes;
}

// Per 1024 questions.
void setContains(benchmark::State& state) {
    const Set set = makeSet(state.range(0));
    const std::vector<int64_t> probes = makeProbes(set);
    for (auto _ : state) {
        for (const int64_t probe : probes) benchmark::DoNotOptimize(set.contains(probe));
    }
}
BENCHMARK(setContains)->Apply(bothSizes);

void treeContains(benchmark::State& state) {
    const Tree tree = makeTree(state.range(0));
    const std::vector<int64_t> probes = makeProbes(makeSet(state.range(0)));
    for (auto _ : state) {
        for (const int64_t probe : probes) benchmark::DoNotOptimize(boost::icl::contains(tree, probe));
    }
}
BENCHMARK(treeContains)->Apply(bothSizes);

// Per 1024 members put into a full set, one by one and anywhere: what a flat vector is worst at.
void setInsert(benchmark::State& state) {
    const Set before = makeSet(state.range(0));
    const std::vector<int64_t> probes = makeProbes(before);
    for (auto _ : state) {
        state.PauseTiming();
        Set set = before;
        state.ResumeTiming();
        for (const int64_t probe : probes) set.insert(probe);
        benchmark::DoNotOptimize(set);
    }
}
BENCHMARK(setInsert)->Apply(bothSizes);

void treeInsert(benchmark::State& state) {
    const Tree before = makeTree(state.range(0));
    const std::vector<int64_t> probes = makeProbes(makeSet(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        Tree tree = before;
        state.ResumeTiming();
        for (const int64_t probe : probes) tree.insert(probe);
        benchmark::DoNotOptimize(tree);
    }
}
BENCHMARK(treeInsert)->Apply(bothSizes);

void setCopy(benchmark::State& state) {
    const Set set = makeSet(state.range(0));
    for (auto _ : state) {
        Set copy = set;
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(setCopy)->Apply(bothSizes);

void treeCopy(benchmark::State& state) {
    const Tree tree = makeTree(state.range(0));
    for (auto _ : state) {
        Tree copy = tree;
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(treeCopy)->Apply(bothSizes);

void setIterate(benchmark::State& state) {
    const Set set = makeSet(state.range(0));
    for (auto _ : state) {
        int64_t sum = 0;
        for (const int64_t member : set) sum += member;
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(setIterate)->Apply(bothSizes);

void treeIterate(benchmark::State& state) {
    const Tree tree = makeTree(state.range(0));
    for (auto _ : state) {
        int64_t sum = 0;
        for (auto member = boost::icl::elements_begin(tree); member != boost::icl::elements_end(tree); ++member) {
            sum += *member;
        }
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(treeIterate)->Apply(bothSizes);

// Through the stand-in host, which checks each call.
void setOfHostSet(benchmark::State& state) {
    vexa::standin::Host host;
    host.setKeepsCalls(false);
    Set_s* handle = VexaUtilSetAlloc();
    for (const Range& run : makeRuns(state.range(0), Order::Ascending)) {
        VexaUtilSetInsert(handle, run.first, run.last);
    }
    for (auto _ : state) {
        Set set(handle);
        benchmark::DoNotOptimize(set);
    }
    VexaUtilSetDealloc(&handle);
}
BENCHMARK(setOfHostSet)->Apply(bothSizes);

}  // namespace
