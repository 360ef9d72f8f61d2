// What checking, writing down, observing and tracing add to a host call. Compare the rows of one function with its
// plain one.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

#include "trace/EventTrace.h"
#include "trace/TextTrace.h"
#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"
#include "vexastandin/Observer.h"

namespace vexa::standin {
namespace {

class Counter : public ObserverInterface {
public:
    void entryBegan(const EntryEvent&) override {}
    void entryEnded(const EntryEvent&) override {}
    void callBegan(const CallEvent&) override {}
    void callEnded(const CallEvent& call) override { m_bytes += call.arguments.size() + call.result.size(); }
    void findingMade(const Finding&) override {}
    void statusChanged(const StatusLine&) override {}
    std::size_t bytes() const { return m_bytes; }

private:
    std::size_t m_bytes = 0;
};

enum class Watch_e { Plain, Checked, Logged, Observed, Traced, TracedAsText };

// A file of the folder for temporary ones, as long as this lives.
class TemporaryFile {
public:
    TemporaryFile() : m_path(std::filesystem::temp_directory_path() / "vexa-host-call-bench") {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }
    std::string path() const { return m_path.string(); }

private:
    std::filesystem::path m_path;
};

// A host that does with a call what a benchmark is about, and nothing else.
class WatchingHost {
public:
    explicit WatchingHost(Watch_e watch) {
        m_host.setChecking(watch == Watch_e::Checked);
        m_host.setKeepsCalls(watch == Watch_e::Logged);
        if (watch == Watch_e::Observed) m_host.setObserver(&m_counter);
        if (watch == Watch_e::Traced) m_host.setObserver(&m_events.emplace(m_file.path(), runner::RunFacts()));
        if (watch == Watch_e::TracedAsText) m_host.setObserver(&m_text.emplace(m_file.path()));
    }
    WatchingHost(const WatchingHost&) = delete;
    WatchingHost& operator=(const WatchingHost&) = delete;
    ~WatchingHost() { benchmark::DoNotOptimize(m_counter.bytes()); }

    // A log that grows for ever would be measured, too.
    void tick() {
        if (++m_rounds % 4096 == 0) m_host.clearCalls();
    }

private:
    Counter m_counter;
    TemporaryFile m_file;
    std::optional<runner::EventTrace> m_events;
    std::optional<runner::TextTrace> m_text;
    Host m_host;
    std::size_t m_rounds = 0;
};

void ask(benchmark::State& state, Watch_e watch) {
    WatchingHost host(watch);
    for (auto _ : state) {
        benchmark::DoNotOptimize(VexaUtilMacroIsBatchModeActive());
        host.tick();
    }
    state.SetItemsProcessed(state.iterations());
}

void lockAndUnlock(benchmark::State& state, Watch_e watch) {
    WatchingHost host(watch);
    ThreadMutex_s* mutex = VexaUtilThreadMutexAlloc();
    for (auto _ : state) {
        VexaUtilThreadMutexLock(mutex);
        VexaUtilThreadMutexUnlock(mutex);
        host.tick();
    }
    state.SetItemsProcessed(2 * state.iterations());
    VexaUtilThreadMutexDealloc(&mutex);
}

void queryStyle(benchmark::State& state, Watch_e watch) {
    WatchingHost host(watch);
    Host::current()->setStyle({"FIELDMAP", "LINETHICKNESS"}, 0.4);
    double thickness = 0;
    for (auto _ : state) {
        ArgList_s* argList = VexaUtilArgListAlloc();
        VexaUtilArgListAppendString(argList, "P1", "FIELDMAP");
        VexaUtilArgListAppendString(argList, "P2", "LINETHICKNESS");
        VexaUtilArgListAppendDoublePtr(argList, "DValue", &thickness);
        benchmark::DoNotOptimize(VexaUtilStyleGetLowLevelX(argList));
        VexaUtilArgListDealloc(&argList);
        host.tick();
    }
    state.SetItemsProcessed(6 * state.iterations());
}

// Few enough for the file of a trace to stay below a hundred megabytes.
constexpr benchmark::IterationCount kTraced = 20000;

#define VEXA_BENCHMARK_WATCHES(calls)                                       \
    BENCHMARK_CAPTURE(calls, plain, Watch_e::Plain);                        \
    BENCHMARK_CAPTURE(calls, checked, Watch_e::Checked);                    \
    BENCHMARK_CAPTURE(calls, logged, Watch_e::Logged);                      \
    BENCHMARK_CAPTURE(calls, observed, Watch_e::Observed);                  \
    BENCHMARK_CAPTURE(calls, traced, Watch_e::Traced)->Iterations(kTraced); \
    BENCHMARK_CAPTURE(calls, tracedAsText, Watch_e::TracedAsText)->Iterations(kTraced)

VEXA_BENCHMARK_WATCHES(ask);
VEXA_BENCHMARK_WATCHES(lockAndUnlock);
VEXA_BENCHMARK_WATCHES(queryStyle);

}  // namespace
}  // namespace vexa::standin
