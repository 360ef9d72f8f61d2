#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "addons/AddOn.h"
#include "calls/CallLog.h"
#include "calls/FaultPlan.h"
#include "contract/Contract.h"
#include "contract/ThreadNumbers.h"
#include "objects/Handles.h"
#include "objects/HostLock.h"
#include "objects/HostObjects.h"
#include "status/Status.h"
#include "status/StopRequest.h"
#include "style/StyleTree.h"
#include "vexastandin/CallProgress.h"
#include "vexastandin/Observer.h"

namespace vexa::standin {

/// A value for several threads, which see it by copy.
template <class Value>
class Shared {
public:
    Value copy() const {
        const std::lock_guard<std::mutex> lock(m_guard);
        return m_value;
    }
    /// The value before is destroyed unguarded: that may run code of others.
    void set(Value value) {
        const std::lock_guard<std::mutex> lock(m_guard);
        std::swap(m_value, value);
    }
    /// Adds to a value that is a list.
    template <class Item>
    void append(Item item) {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_value.push_back(std::move(item));
    }

private:
    mutable std::mutex m_guard;
    Value m_value;
};

/// The one who is told what happens, if any.
class Audience {
public:
    void set(ObserverInterface* observer) { m_observer = observer; }
    bool isThere() const { return m_observer.load(std::memory_order_relaxed) != nullptr; }

    /// Has \p tell tell the observer. Nothing that watches makes a call fail, so what it throws is dropped.
    template <class Tell>
    void tell(const Tell& tell) const noexcept {
        ObserverInterface* const observer = m_observer;
        if (observer == nullptr) return;
        try {
            tell(*observer);
        } catch (...) {}
    }

private:
    std::atomic<ObserverInterface*> m_observer{nullptr};
};

/// The inside of a Host: what its C functions work on.
///
/// Each part guards itself, and none is locked while code of others runs: an add-on's, or what shows a dialog or the
/// status line.
struct HostState {
    explicit HostState(Host& itsHost) : host(itsHost) {}

    /// The state of the innermost living host; null when none lives.
    static HostState* current() { return innermost.load(std::memory_order_acquire); }

    /// Only birth and death of hosts change it.
    static std::atomic<HostState*> innermost;

    Host& host;
    HostState* outer = nullptr;  ///< the host before, while this is one of the living

    std::atomic<bool> isBatchMode{false};
    std::atomic<bool> isRecording{false};
    std::atomic<bool> isProcessingJournal{false};
    std::atomic<bool> isProcessingLayout{false};

    Audience audience;
    ThreadNumbers threads;
    CallLog calls;
    FaultPlan faults;
    Shared<std::vector<RecordedCommand>> recorded;
    Shared<std::vector<JournalEntry>> journal;
    Shared<std::vector<std::string>> dialogs;
    Shared<std::function<void(const std::string&)>> showDialog;
    Shared<std::function<void(const RecordedCommand&)>> keepRecorded;
    Shared<std::function<void(const JournalEntry&)>> keepJournaled;

    Status status;
    Shared<std::function<void(const StatusLine&)>> showStatus;
    StopRequest stopRequest;

    /// Shows what came of a call of \ref status.
    /// \return whether that was a change.
    bool showChange(const std::optional<StatusLine>& change) const;

    StyleTree styles;

    /// Sets a style value, a set together with its handle.
    void setStyle(const std::vector<std::string>& path, const StyleTree::Offsets& offsets, const StyleValue& value);

    HostLock lock;
    Handles<ThreadMutex_s> mutexes;
    Handles<ArgList_s> argLists;
    Handles<Set_s> sets;
    HostStrings strings;

    /// Lets go on who waits in a call of a host that ends: nobody may be there to end the wait.
    void endWaiting();

    Handles<Set_s> styleSets;  ///< the host's own, which add-ons may read

    Contract contract{threads, strings, [this](const Finding& finding) {
                          audience.tell([&](ObserverInterface& observer) { observer.findingMade(finding); });
                      }};
    CallProgress ownProgress;
    CallProgress* progress = &ownProgress;  ///< never null; changed only while no call can be made

    /// Whether calls are neither checked nor told of nor made to fail. They then cost half as much, for they take a
    /// short road of their own.
    bool isLeftAlone() const {
        return !contract.isOn() && !calls.keeps() && !audience.isThere() && !faults.isAnyPlanned();
    }

    /// Counts a call that begins.
    /// \return its number.
    std::size_t countCall(HostFunction function) const {
        progress->lastFunction.store(static_cast<std::size_t>(function), std::memory_order_relaxed);
        return progress->calls.fetch_add(1, std::memory_order_relaxed) + 1;
    }

    /// Counts a call that nobody tells from others, so that one may be lost to another thread's: counting exactly would
    /// be most of the cost.
    void countUnnumbered(HostFunction function) const {
        progress->lastFunction.store(static_cast<std::size_t>(function), std::memory_order_relaxed);
        progress->calls.store(progress->calls.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    }

    Shared<std::vector<std::shared_ptr<const AddOn>>> addOns;  ///< in the order of their loading
};

}  // namespace vexa::standin
