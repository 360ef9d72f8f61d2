// What guards, the mutex and the task progress add to the bare host calls and to a bare loop.
#include <benchmark/benchmark.h>

#include <mutex>

#include "vexa/VexaUtil.h"
#include "vexa/ui/TaskProgress.h"
#include "vexautilutil/HostGuards.h"
#include "vexautilutil/Mutex.h"
#include "vexautilutil/TaskProgressBar.h"

namespace vexa::vexautilutil {
namespace {

void callLockBarely(benchmark::State& state) {
    for (auto _ : state) {
        VexaUtilLockStart(nullptr);
        VexaUtilLockFinish(nullptr);
    }
}
void holdAddOnIdLock(benchmark::State& state) {
    for (auto _ : state) const AddOnIdLock lock(nullptr);
}
BENCHMARK(callLockBarely);
BENCHMARK(holdAddOnIdLock);

void callMarkingBarely(benchmark::State& state) {
    for (auto _ : state) {
        VexaUtilDataSetSuspendMarking(1);
        VexaUtilDataSetSuspendMarking(0);
    }
}
void holdDataSetSuspendMarking(benchmark::State& state) {
    for (auto _ : state) const DataSetSuspendMarking guard;
}
BENCHMARK(callMarkingBarely);
BENCHMARK(holdDataSetSuspendMarking);

void callMutexBarely(benchmark::State& state) {
    ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
    for (auto _ : state) {
        VexaUtilThreadMutexLock(mutex);
        VexaUtilThreadMutexUnlock(mutex);
    }
    VexaUtilThreadMutexDealloc(&mutex);
}
void lockMutex(benchmark::State& state) {
    Mutex mutex;
    for (auto _ : state) const std::lock_guard<Mutex> lock(mutex);
}
BENCHMARK(callMutexBarely);
BENCHMARK(lockMutex);

constexpr long kSteps = 1000000000000;  // so many that the percentage never changes

void countAndCompare(benchmark::State& state) {
    long done = 0;
    long next = kSteps / 100;
    for (auto _ : state) {
        benchmark::DoNotOptimize(next);
        if (++done >= next) state.SkipWithError("the percentage changed");
        benchmark::DoNotOptimize(done);
    }
}
void advanceWithinAPercentage(benchmark::State& state) {
    const auto progress = createTaskProgressBar(kSteps);
    for (auto _ : state) progress->advance();
}
BENCHMARK(countAndCompare);
BENCHMARK(advanceWithinAPercentage);

}  // namespace
}  // namespace vexa::vexautilutil
