#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "contract/Books.h"
#include "contract/HostFunctionTable.h"
#include "contract/HostStrings.h"
#include "contract/ThreadNumbers.h"
#include "vexastandin/Finding.h"

namespace vexa::standin {

/// Checks that add-ons keep the rules of rules().
///
/// It judges by the calls that were made, not by what the host did upon them: a call that the host was told to fail
/// counts as made. What a call takes counts when the call returns, what it gives back when it begins.
///
/// Errors:  without memory for its books it gives up, for good: it makes no finding rather than a false one.
/// Threads: safe from any.
class Contract {
public:
    using Show = std::function<void(const Finding&)>;

    /// \param show    called with each finding, on the thread that made it, with nothing locked.
    /// \param strings the host's strings, to look at what was written to them.
    Contract(ThreadNumbers& threads, const HostStringsInterface& strings, Show show);

    bool isOn() const { return m_isOn.load(std::memory_order_relaxed); }
    void setOn(bool isOn) { m_isOn = isOn; }

    /// Has \p check judge what begins or ends with a call, and keep the books; not when nothing is checked.
    /// \param check is given the books and the moment.
    template <class Check>
    void check(std::size_t call, HostFunction function, const Check& check) {
        if (isOn()) update([&] { check(m_books, momentOf(call, function)); });
    }

    /// The host enters an add-on, on the calling thread.
    void enter(Entry entry);
    /// The add-on being loaded will be known to the host by \p identity.
    void introduce(const AddOnList_s* identity);
    /// The add-on being loaded has told its id.
    void name(const std::string& addOnId);
    /// Judges what the command left as its error message.
    void judgeErrorMessage(bool accepted, const char* errMsg);
    /// Judges an exception that escaped.
    void judgeEscape(const std::string& what);
    /// The host is back from the add-on that it entered last.
    void leave();

    /// A set is lent to add-ons.
    void lend(const Set_s* set);
    void takeBack(const Set_s* set);

    void report(Finding finding);
    void suppress(const Rule& rule);
    std::vector<Finding> findings() const;
    std::vector<std::string> unusedSuppressions() const;
    /// The place of a call in what runs now, or ran last.
    Place placeNow(std::size_t call, std::optional<HostFunction> function) const;

private:
    template <class Action>
    void update(const Action& action) {
        std::vector<Finding> made;
        try {
            const std::lock_guard<std::mutex> lock(m_guard);
            action();
            made = m_books.findings.takeNew();
        } catch (const std::bad_alloc&) {
            m_isOn = false;
        }
        for (const Finding& finding : made) m_show(finding);
    }

    Moment momentOf(std::size_t call, HostFunction function);
    Moment endOfEntry() const;
    void judgeEnd();

    ThreadNumbers& m_threads;
    Show m_show;
    std::atomic<bool> m_isOn{true};
    mutable std::mutex m_guard;
    Books m_books;
};

}  // namespace vexa::standin
