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
#include "contract/CodeStacks.h"
#include "contract/HostFunctionTable.h"
#include "contract/HostStrings.h"
#include "contract/ThreadNumbers.h"
#include "vexastandin/Finding.h"

namespace vexa::standin {

/// Checks that add-ons keep the rules of rules().
///
/// The class checks all calls, whatever the host did with them: a call that the host was told to fail counts, too. An
/// acquired object counts from the return of the acquiring call, and a released one until the start of the releasing
/// call.
/// Several threads may be in add-ons at the same time.
///
/// Errors:  if memory runs out, the class stops checking, because any further finding could be wrong.
/// Threads: any thread may call the functions.
class Contract {
public:
    using Show = std::function<void(const Finding&)>;

    /// \param threads numbers the threads; must outlive this object.
    /// \param strings the host's strings, to check their contents; must outlive this object.
    /// \param objects the objects in memory, to name the code that calls the host; must outlive this object.
    /// \param handled names the exception that the thread handles, to say where a message comes from.
    /// \param show    called with each finding, on the thread of the call. No mutex is locked during this call.
    Contract(ThreadNumbers& threads, const HostStringsInterface& strings, CodeObjectsInterface& objects,
             HandledException handled, Show show);

    bool isOn() const { return m_isOn.load(std::memory_order_relaxed); }
    void setOn(bool isOn) { m_isOn = isOn; }

    /// Runs \p check on the books for the start or the return of a call, unless checking is off. checkCall() and
    /// checkReturn() call it.
    /// \param check takes the books and the moment.
    template <class Check>
    void check(std::size_t call, HostFunction function, const Check& check) {
        if (isOn()) update([&] { check(m_books, momentOf(call, function)); });
    }

    /// Notes that the host enters an add-on on the calling thread.
    void enter(Entry entry);
    /// Notes that the host gives \p identity to the add-on that is being loaded.
    void introduce(const AddOnList_s* identity);
    /// Notes the id that the add-on being loaded has returned.
    void name(const std::string& addOnId);
    /// Checks the error message of the command; null if it has none.
    void judgeErrorMessage(bool accepted, const char* errMsg);
    /// Returns where a command failed: the code that threw the exception from which the add-on made the message, or
    /// else the code that made the message. The end of the command if \p errMsg is no string of the host. Call it
    /// before judgeErrorMessage().
    Place placeOfFailure(const char* errMsg);
    /// Returns where a command failed that \p exception escaped from.
    Place placeOfEscape(const void* exception);
    /// Reports that \p exception escaped from the add-on.
    void judgeEscape(const std::string& what, const void* exception);
    /// Notes that the add-on that the calling thread entered last has returned.
    /// \param isGone false if the host has shut the add-on down, but unloads it later. Until then it may free mutexes
    ///               and sets.
    void leave(bool isGone = true);

    /// Notes that the add-on that the thread \p thread entered last has not returned: an exception or a jump left it,
    /// or the thread ended. Reports \p what. After its shutdown, the add-on may still free mutexes and sets.
    void abandon(std::size_t thread, const std::string& what);

    /// Notes that the host lends \p set to add-ons: they may read it, but not change or free it.
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

    /// From now on passes each finding to \p complete, which may add to it, before it keeps or shows the finding.
    /// \p complete must not call this object.
    void onFinding(std::function<void(Finding&)> complete);
    void report(Finding finding);
    void suppress(const Rule& rule);
    std::vector<Finding> findings() const;
    std::vector<std::string> unusedSuppressions() const;
    /// Returns the place of a call in the current or the last entry.
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
    Moment endBy(const void* exception);
    void end(std::size_t thread, bool isGone);
    void judgeEnd(EntryBooks& books, bool isGone);

    ThreadNumbers& m_threads;
    Show m_show;
    std::atomic<bool> m_isOn{true};
    mutable std::mutex m_guard;
    CodeStacks m_stacks;
    Books m_books;
};

}  // namespace vexa::standin
