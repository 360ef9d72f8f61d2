/// \file The names of benchmarks are row/subject/times. A row is a kind of work, and its subjects do the same work; the
/// subject "ours" is this library. Each subject does the work once, and 10, 100 and 1000 times.
#pragma once

#include <benchmark/benchmark.h>

#include <string>

namespace vexa::bench {

template <class Function>
void addSubject(const std::string& rowAndSubject, const Function& function) {
    benchmark::RegisterBenchmark(rowAndSubject.c_str(), function)->RangeMultiplier(10)->Range(1, 1000);
}

/// Calls \p work as many times as the benchmark's name says. For work that is a single call.
template <class Work>
void repeat(benchmark::State& state, const Work& work) {
    for (auto _ : state) {
        for (int64_t i = 0; i < state.range(0); ++i) work();
    }
}

/// Adds a subject whose work is a single call.
template <class Work>
void addCall(const std::string& rowAndSubject, Work work) {
    addSubject(rowAndSubject, [work](benchmark::State& state) { repeat(state, work); });
}

}  // namespace vexa::bench
