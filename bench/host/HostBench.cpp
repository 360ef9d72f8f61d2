// Measures what guards, the mutex and the task progress add to bare host calls and to a bare loop.
#include <cstdlib>
#include <mutex>

#include "support/Rows.h"
#include "vexa/VexaUtil.h"
#include "vexa/ui/TaskProgress.h"
#include "vexautilutil/HostGuards.h"
#include "vexautilutil/Mutex.h"
#include "vexautilutil/TaskProgressBar.h"

namespace vexa::vexautilutil {
namespace {

using bench::addCall;
using bench::addSubject;

constexpr long kSteps = 1000000000000;  // so many that the percentage never changes

void callMutex(benchmark::State& state) {
    ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
    bench::repeat(state, [mutex] {
        VexaUtilThreadMutexLock(mutex);
        VexaUtilThreadMutexUnlock(mutex);
    });
    VexaUtilThreadMutexDealloc(&mutex);
}

void lockMutex(benchmark::State& state) {
    Mutex mutex;
    bench::repeat(state, [&mutex] { const std::lock_guard<Mutex> lock(mutex); });
}

void countAndCompare(benchmark::State& state) {
    long done = 0;
    long next = kSteps / 100;
    bench::repeat(state, [&] {
        benchmark::DoNotOptimize(next);
        if (++done >= next) std::abort();
        benchmark::DoNotOptimize(done);
    });
}

void advance(benchmark::State& state) {
    const auto progress = createTaskProgressBar(kSteps);
    bench::repeat(state, [&] { progress->advance(); });
}

const bool isAdded = [] {
    addCall("guard-lock/host_calls", [] {
        VexaUtilLockStart(nullptr);
        VexaUtilLockFinish(nullptr);
    });
    addCall("guard-lock/ours", [] { const AddOnIdLock lock(nullptr); });
    addCall("guard-marking/host_calls", [] {
        VexaUtilDataSetSuspendMarking(1);
        VexaUtilDataSetSuspendMarking(0);
    });
    addCall("guard-marking/ours", [] { const DataSetSuspendMarking guard; });
    addSubject("mutex-lock/host_calls", callMutex);
    addSubject("mutex-lock/ours", lockMutex);
    addSubject("progress-advance/count", countAndCompare);
    addSubject("progress-advance/ours", advance);
    return true;
}();

}  // namespace
}  // namespace vexa::vexautilutil
