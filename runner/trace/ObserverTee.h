#pragma once

#include <vector>

#include "vexastandin/Observer.h"

namespace vexa::runner {

/// Passes every event on to several observers, in their order.
///
/// Ownership: it does not own the observers; they must outlive it.
/// Threads:   as an observer.
class ObserverTee : public standin::ObserverInterface {
public:
    void add(standin::ObserverInterface& observer) { m_observers.push_back(&observer); }

    void entryBegan(const standin::EntryEvent& entry) override {
        for (auto* observer : m_observers) observer->entryBegan(entry);
    }
    void entryEnded(const standin::EntryEvent& entry) override {
        for (auto* observer : m_observers) observer->entryEnded(entry);
    }
    void callBegan(const standin::CallEvent& call) override {
        for (auto* observer : m_observers) observer->callBegan(call);
    }
    void callEnded(const standin::CallEvent& call) override {
        for (auto* observer : m_observers) observer->callEnded(call);
    }
    void findingMade(const standin::Finding& finding) override {
        for (auto* observer : m_observers) observer->findingMade(finding);
    }
    void statusChanged(const standin::StatusLine& line) override {
        for (auto* observer : m_observers) observer->statusChanged(line);
    }

private:
    std::vector<standin::ObserverInterface*> m_observers;
};

}  // namespace vexa::runner
