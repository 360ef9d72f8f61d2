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
#include "answers/HostAnswers.h"
#include "calls/CallLog.h"
#include "calls/CodeObjects.h"
#include "calls/FaultPlan.h"
#include "calls/HandledException.h"
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

/// A value for several threads. Each gets a copy.
template <class Value>
class Shared {
public:
    Value copy() const {
        const std::lock_guard<std::mutex> lock(m_guard);
        return m_value;
    }
    /// Destroys the old value without the lock, because its destructor may run foreign code.
    void set(Value value) {
        const std::lock_guard<std::mutex> lock(m_guard);
        std::swap(m_value, value);
    }
    /// Appends to a value that is a list.
    template <class Item>
    void append(Item item) {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_value.push_back(std::move(item));
    }

private:
    mutable std::mutex m_guard;
    Value m_value;
};

/// The observer, if there is one.
class Audience {
public:
    void set(ObserverInterface* observer) { m_observer = observer; }
    bool isThere() const { return m_observer.load(std::memory_order_relaxed) != nullptr; }

    /// Calls \p tell with the observer. Ignores exceptions, because a host call must not fail because of an observer.
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

/// The parts of a Host, which its C functions use.
///
/// Each part has its own lock. No lock is held while foreign code runs: an add-on, or a function that shows a dialog or
/// the status line.
struct HostState {
    explicit HostState(Host& itsHost) : host(itsHost) {}

    /// The state of the innermost living host; null if there is none.
    static HostState* current() { return innermost.load(std::memory_order_acquire); }

    /// Only constructors and destructors of hosts change it.
    static std::atomic<HostState*> innermost;

    Host& host;
    HostState* outer = nullptr;  ///< the host that was the process's host before this one

    HostAnswers answers;  ///< changed only while no call can be made

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

    /// Shows a change that a call of \ref status returned.
    /// \return true if there was a change.
    bool showChange(const std::optional<StatusLine>& change) const;

    StyleTree styles;

    /// Sets a style value. For a set this also keeps its handle.
    void setStyle(const std::vector<std::string>& path, const StyleTree::Offsets& offsets, const StyleValue& value);

    HostLock lock;
    Handles<ThreadMutex_s> mutexes;
    Handles<ArgList_s> argLists;
    Handles<Set_s> sets;
    HostStrings strings;

    /// Wakes the threads that wait in a call of this host, because nobody else wakes them after the host is destroyed.
    void endWaiting();

    Handles<Set_s> styleSets;  ///< sets of the host that add-ons may read

    CodeObjects codeObjects;
    Contract contract{threads, strings, codeObjects, handledException, [this](const Finding& finding) {
                          audience.tell([&](ObserverInterface& observer) { observer.findingMade(finding); });
                      }};
    CallProgress ownProgress;
    CallProgress* progress = &ownProgress;  ///< never null; changed only while no call can be made

    /// Returns true if calls are not checked, logged, observed or made to fail. Such calls take a faster path.
    bool isLeftAlone() const {
        return !contract.isOn() && !calls.keeps() && !audience.isThere() && !faults.isAnyPlanned();
    }

    /// Counts a call that starts.
    /// \return its number.
    std::size_t countCall(HostFunction function) const {
        progress->lastFunction.store(static_cast<std::size_t>(function), std::memory_order_relaxed);
        return progress->calls.fetch_add(1, std::memory_order_relaxed) + 1;
    }

    /// Counts a call whose number nobody uses. The count is not exact if several threads call at once, because exact
    /// counting would be most of the cost of such a call.
    void countUnnumbered(HostFunction function) const {
        progress->lastFunction.store(static_cast<std::size_t>(function), std::memory_order_relaxed);
        progress->calls.store(progress->calls.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    }

    Shared<std::vector<std::shared_ptr<const AddOn>>> addOns;  ///< in the order of their loading
};

}  // namespace vexa::standin
