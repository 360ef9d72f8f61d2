#pragma once

#include <functional>
#include <mutex>
#include <string_view>
#include <utility>

#include "coverage/CoverageCollector.h"
#include "vexastandin/Observer.h"

namespace vexa::runner {

/// An observer that reports the coverage of a run as it grows, so that nothing is lost if the process dies.
///
/// Threads: as an observer.
class CoverageObserver : public standin::ObserverInterface {
public:
    /// \param tell gets the text of new facts: see coverageText(). Called by one thread at a time.
    CoverageObserver(CoverageSetting setting, std::function<void(std::string_view)> tell)
        : m_collector(std::move(setting)), m_tell(std::move(tell)) {}

    void entryBegan(const standin::EntryEvent& entry) override;
    void entryEnded(const standin::EntryEvent& entry) override;
    void callBegan(const standin::CallEvent& call) override;
    void callEnded(const standin::CallEvent& call) override;
    void findingMade(const standin::Finding&) override {}
    void statusChanged(const standin::StatusLine&) override {}

private:
    template <class Action>
    void note(const Action& action);

    std::mutex m_guard;
    CoverageCollector m_collector;
    std::function<void(std::string_view)> m_tell;
};

}  // namespace vexa::runner
