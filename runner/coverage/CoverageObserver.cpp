#include "coverage/CoverageObserver.h"

#include "coverage/CoverageFile.h"

namespace vexa::runner {
namespace {

std::string_view kindOf(standin::Entry_e kind) {
    switch (kind) {
        case standin::Entry_e::Loading: return "loading";
        case standin::Entry_e::Command: return "command";
        case standin::Entry_e::Unloading: return "unloading";
    }
    return "";
}

}  // namespace

template <class Action>
void CoverageObserver::note(const Action& action) {
    const std::lock_guard<std::mutex> lock(m_guard);
    action();
    if (m_collector.hasNews()) m_tell(coverageText(m_collector.takeNews()));
}

void CoverageObserver::entryBegan(const standin::EntryEvent& entry) {
    note([&] { m_collector.enter(kindOf(entry.kind), entry.addOnId, entry.command, entry.threadNumber); });
}

void CoverageObserver::entryEnded(const standin::EntryEvent& entry) {
    note([&] { m_collector.leave(entry.succeeded); });
}

void CoverageObserver::callBegan(const standin::CallEvent& call) {
    note([&] { m_collector.call(call.function, call.threadNumber); });
}

void CoverageObserver::callEnded(const standin::CallEvent& call) {
    if (call.threw) return;
    note([&] { m_collector.answer(call.function, call.result); });
}

}  // namespace vexa::runner
