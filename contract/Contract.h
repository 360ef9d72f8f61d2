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
/// It checks the calls that were made, whatever the host did with them: a call that the host was told to fail counts,
/// too. What a call acquires counts from the return of the call, and what it releases until the call begins.
/// Several threads may be in add-ons at a time.
///
/// Errors:  if it runs out of memory it stops checking for good, because any further finding could be wrong.
/// Threads: safe from any.
class Contract {
public:
    using Show = std::function<void(const Finding&)>;

    /// \param threads numbers the threads; lives longer than this.
    /// \param strings the host's strings, to see what was written to them; lives longer than this.
    /// \param show    called with each finding, on the thread that made the call, with nothing locked.
    Contract(ThreadNumbers& threads, const HostStringsInterface& strings, Show show);

    bool isOn() const { return m_isOn.load(std::memory_order_relaxed); }
    void setOn(bool isOn) { m_isOn = isOn; }

    /// Runs \p check on the books for the beginning or the end of a call, unless checking is off. checkCall() and
    /// checkReturn() call it.
    /// \param check takes the books and the moment.
    template <class Check>
    void check(std::size_t call, HostFunction function, const Check& check) {
        if (isOn()) update([&] { check(m_books, momentOf(call, function)); });
    }

    /// The host enters an add-on on the calling thread.
    void enter(Entry entry);
    /// The add-on that is being loaded gets \p identity from the host.
    void introduce(const AddOnList_s* identity);
    /// The add-on that is being loaded has returned its id.
    void name(const std::string& addOnId);
    /// Checks the error message of the command, null if it has none.
    void judgeErrorMessage(bool accepted, const char* errMsg);
    /// Reports that an exception escaped from the add-on.
    void judgeEscape(const std::string& what);
    /// The add-on that the calling thread entered last has returned.
    /// \param isGone false if the host has shut the add-on down, but unloads it later. Until then it may free mutexes
    ///               and sets.
    void leave(bool isGone = true);

    /// The add-on that the thread \p thread entered last has not returned: an exception or a jump left it, or the
    /// thread ended. Reports \p what. After its shutdown, the add-on may still free mutexes and sets.
    void abandon(std::size_t thread, const std::string& what);

    /// The host lends \p set to add-ons: they may read it, but not change or free it.
    void lend(const Set_s* set);
    void takeBack(const Set_s* set);
    /// Lends what a style query with \p argList has stored, for a host that does not know its sets beforehand. A number
    /// that is lent does no harm.
    void lendResultOf(const ArgList_s* argList);

    /// The name of a handle as calls show it.
    template <class Handle>
    std::string nameOf(const Handle* handle) {
        const std::lock_guard<std::mutex> lock(m_guard);
        return ledgerOf(m_books, handle).nameOf(handle);
    }

    void report(Finding finding);
    void suppress(const Rule& rule);
    std::vector<Finding> findings() const;
    std::vector<std::string> unusedSuppressions() const;
    /// The place of a call in the entry that runs now, or that ran last.
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
    /// The books of the entry that \p thread is in; of the newest entry if it is in none.
    EntryBooks& booksOf(std::size_t thread);
    EntryBooks& mine() { return booksOf(m_threads.mine()); }
    static Moment endOf(const EntryBooks& books);
    void end(std::size_t thread, bool isGone);
    void judgeEnd(EntryBooks& books, bool isGone);

    ThreadNumbers& m_threads;
    Show m_show;
    std::atomic<bool> m_isOn{true};
    mutable std::mutex m_guard;
    Books m_books;
};

}  // namespace vexa::standin
