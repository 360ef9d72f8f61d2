// Paired calls, and mutexes. A host whose paired calls do not nest hangs; the facts file then names the question.

#include <atomic>
#include <chrono>
#include <thread>

#include "probe/questions/Owned.h"
#include "probe/questions/Questions.h"

namespace vexa::probe {
namespace {

constexpr int kManyMutexes = 64;
constexpr std::chrono::milliseconds kTimeForOtherThread{100};

template <class Start, class Finish>
Answer nests(const Start& start, const Finish& finish) {
    start();
    start();
    finish();
    finish();
    return true;
}

Answer lockNests(const Circumstances& now) {
    return nests([&] { VexaUtilLockStart(now.identity); }, [&] { VexaUtilLockFinish(now.identity); });
}

Answer markingNests(const Circumstances&) {
    return nests([] { VexaUtilDataSetSuspendMarking(1); }, [] { VexaUtilDataSetSuspendMarking(0); });
}

Answer auxDataNests(const Circumstances&) { return nests(VexaUtilAuxDataBeginAssign, VexaUtilAuxDataEndAssign); }

Answer solutionTimeNests(const Circumstances&) {
    return nests(VexaUtilZoneSolutionTimeModificationBegin, VexaUtilZoneSolutionTimeModificationEnd);
}

Answer mutexClearsHandle(const Circumstances&) { return OwnedMutex(VexaUtilThreadMutexAlloc()).isClearedWhenFreed(); }

Answer mostMutexes(const Circumstances&) {
    std::vector<OwnedMutex> mutexes;
    mutexes.reserve(kManyMutexes);
    while (mutexes.size() != kManyMutexes) {
        ThreadMutex_s* const mutex = VexaUtilThreadMutexAlloc();
        if (mutex == nullptr) break;
        mutexes.emplace_back(mutex);
    }
    return static_cast<long>(mutexes.size());
}

Answer mutexExcludesOthers(const Circumstances&) {
    const OwnedMutex mutex(VexaUtilThreadMutexAlloc());
    std::atomic<bool> hasPassed{false};
    VexaUtilThreadMutexLock(mutex.get());
    std::thread other([&] {
        VexaUtilThreadMutexLock(mutex.get());
        hasPassed = true;
        VexaUtilThreadMutexUnlock(mutex.get());
    });
    std::this_thread::sleep_for(kTimeForOtherThread);
    const bool isExcluded = !hasPassed;
    VexaUtilThreadMutexUnlock(mutex.get());
    other.join();
    return isExcluded;
}

}  // namespace

std::vector<Question> scopeQuestions() {
    using facts::Fact;
    return {{Fact::LockNests, lockNests},
            {Fact::MarkingNests, markingNests},
            {Fact::AuxDataNests, auxDataNests},
            {Fact::SolutionTimeNests, solutionTimeNests},
            {Fact::MutexDeallocClearsHandle, mutexClearsHandle},
            {Fact::MutexMost, mostMutexes},
            {Fact::MutexExcludesOthers, mutexExcludesOthers}};
}

}  // namespace vexa::probe
