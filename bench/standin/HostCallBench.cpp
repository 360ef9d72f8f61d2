// Compares a call of the stand-in host with an empty function of another library: plain, and with checks, log, observer
// and trace.
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "standin/EmptyFunction.h"
#include "support/Rows.h"
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

// A temporary file. The destructor removes it.
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

// A host that does only what a benchmark measures.
class WatchingHost {
public:
    explicit WatchingHost(Watch_e watch) {
        m_host.setChecking(watch == Watch_e::Checked);
        m_host.setKeepsCalls(watch == Watch_e::Logged);
        if (watch == Watch_e::Observed) m_host.setObserver(&m_counter);
        if (watch == Watch_e::Traced)
            m_host.setObserver(&m_events.emplace(m_file.path(), runner::RunFacts(), runner::Append_e::ByMapping));
        if (watch == Watch_e::TracedAsText)
            m_host.setObserver(&m_text.emplace(m_file.path(), runner::Append_e::ByMapping));
    }
    WatchingHost(const WatchingHost&) = delete;
    WatchingHost& operator=(const WatchingHost&) = delete;
    ~WatchingHost() { benchmark::DoNotOptimize(m_counter.bytes()); }

    // Without this, the benchmark would also measure a growing log.
    void tick() {
        if (++m_rounds % 4096 == 0) m_host.clearCalls();
    }

    ThreadMutex_s* mutex() const { return m_mutex; }

private:
    Counter m_counter;
    TemporaryFile m_file;
    std::optional<runner::EventTrace> m_events;
    std::optional<runner::TextTrace> m_text;
    Host m_host;
    ThreadMutex_s* const m_mutex = VexaUtilThreadMutexAlloc();
    std::size_t m_rounds = 0;
};

using Calls = void (*)(const WatchingHost& host);

void ask(const WatchingHost& /*host*/) { benchmark::DoNotOptimize(VexaUtilMacroIsBatchModeActive()); }

void lockAndUnlock(const WatchingHost& host) {
    VexaUtilThreadMutexLock(host.mutex());
    VexaUtilThreadMutexUnlock(host.mutex());
}

void queryStyle(const WatchingHost& /*host*/) {
    double thickness = 0;
    ArgList_s* argList = VexaUtilArgListAlloc();
    VexaUtilArgListAppendString(argList, "P1", "FIELDMAP");
    VexaUtilArgListAppendString(argList, "P2", "LINETHICKNESS");
    VexaUtilArgListAppendDoublePtr(argList, "DValue", &thickness);
    benchmark::DoNotOptimize(VexaUtilStyleGetLowLevelX(argList));
    VexaUtilArgListDealloc(&argList);
}

void watch(benchmark::State& state, Calls calls, Watch_e watch) {
    WatchingHost host(watch);
    Host::current()->setStyle({"FIELDMAP", "LINETHICKNESS"}, 0.4);
    bench::repeat(state, [&] {
        calls(host);
        host.tick();
    });
}

void add(const std::string& row, Calls calls, int64_t count) {
    bench::addSubject(row + "/empty_calls", [=](benchmark::State& state) {
        bench::repeat(state, [=] {
            for (int64_t i = 0; i < count; ++i) vexaBenchDoNothing();
        });
    });
    constexpr std::pair<const char*, Watch_e> kWatches[] = {
        {"plain", Watch_e::Plain},       {"checked", Watch_e::Checked}, {"logged", Watch_e::Logged},
        {"observed", Watch_e::Observed}, {"traced", Watch_e::Traced},   {"traced_as_text", Watch_e::TracedAsText}};
    for (const auto& [name, kind] : kWatches) {
        const auto run = [=, watched = kind](benchmark::State& state) {
            watch(state, calls, watched);
            state.counters["calls"] = static_cast<double>(count);
        };
        bench::addSubject(row + '/' + name, run);
    }
}

const bool isAdded = [] {
    add("host-call-ask", ask, 1);
    add("host-call-lock", lockAndUnlock, 2);
    add("host-call-style", queryStyle, 6);
    return true;
}();

}  // namespace
}  // namespace vexa::standin
