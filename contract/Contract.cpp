#include "contract/Contract.h"

#include <memory>
#include <utility>

#include "contract/ThrowNotes.h"

namespace vexa::standin {

Contract::Contract(ThreadNumbers& threads, const HostStringsInterface& strings, CodeObjectsInterface& objects,
                   HandledException handled, Show show)
    : m_threads(threads), m_show(std::move(show)), m_stacks(objects, handled), m_books(strings) {
    m_books.entries.push_back({std::make_shared<Entry>(), {}, {}});
}

void Contract::enter(Entry entry) {
    entry.thread = m_threads.mine();
    forgetThrows();
    auto entered = std::make_shared<Entry>(std::move(entry));
    const std::lock_guard<std::mutex> lock(m_guard);
    if (entered->kind != Entry_e::Command) m_stacks.forget();
    entered->stack = m_stacks.of(entered->function);
    m_books.entries.push_back({entered, {}, {}});
    m_books.threads.entered(std::move(entered));
}

void Contract::introduce(const AddOnList_s* identity) {
    update([&] { m_books.identities.insert(identity); });
}

void Contract::name(const std::string& addOnId) {
    update([&] {
        Entry& entry = *mine().entry;
        m_books.findings.rename(entry.addOnId, addOnId);
        entry.addOnId = addOnId;
    });
}

void Contract::judgeErrorMessage(bool accepted, const char* errMsg) {
    if (!isOn()) return;
    update(
        [&] { m_books.strings.commandEnded(accepted, errMsg, mine().hadNoMemory, endOf(mine()), m_books.findings); });
}

Place Contract::placeOfFailure(const char* errMsg) {
    const std::lock_guard<std::mutex> lock(m_guard);
    if (errMsg == nullptr || !m_books.stringLedger.isLiving(errMsg)) return placeOf(endOf(mine()));
    Moment made = m_books.stringLedger.originOf(errMsg);
    if (const auto& cause = m_books.stringLedger.causeOf(errMsg)) made.stack = cause;
    return placeOf(made);
}

Place Contract::placeOfEscape(const void* exception) {
    const std::lock_guard<std::mutex> lock(m_guard);
    return placeOf(endBy(exception));
}

void Contract::judgeEscape(const std::string& what, const void* exception) {
    if (!isOn()) return;
    update([&] { m_books.findings.add("escaped-exception", what, endBy(exception)); });
}

void Contract::leave(bool isGone) { end(m_threads.mine(), isGone); }

void Contract::abandon(std::size_t thread, const std::string& what) {
    if (isOn()) update([&] { m_books.findings.add("escaped-exception", what, endOf(booksOf(thread))); });
    end(thread, false);
}

void Contract::end(std::size_t thread, bool isGone) {
    update([&] {
        if (isOn()) judgeEnd(booksOf(thread), isGone);
    });
    const std::lock_guard<std::mutex> lock(m_guard);
    m_books.entries.erase(m_books.entries.begin() + (&booksOf(thread) - m_books.entries.data()));
}

void Contract::lend(const Set_s* set) {
    update([&] { m_books.setLedger.lent(set, endOf(mine())); });
}

void Contract::takeBack(const Set_s* set) {
    update([&] { m_books.setLedger.takenBack(set, endOf(mine())); });
}

// Small numbers are no addresses. They stay out, so that queries for numbers do not fill the ledger.
void Contract::lendResultOf(const ArgList_s* argList) {
    constexpr VexaArbParam kLeastAddress = 0x10000;
    update([&] {
        const VexaArbParam* const place = m_books.arguments.placeOfHandle(argList);
        if (place == nullptr || *place < kLeastAddress) return;
        const void* const handle = reinterpret_cast<const void*>(*place);
        if (!m_books.setLedger.isLiving(handle)) m_books.setLedger.lent(handle, endOf(mine()));
    });
}

void Contract::onFinding(std::function<void(Finding&)> complete) {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_books.findings.setComplete(std::move(complete));
}

void Contract::report(Finding finding) {
    update([&] { m_books.findings.add(std::move(finding)); });
}

void Contract::suppress(const Rule& rule) {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_books.findings.suppress(rule);
}

std::vector<Finding> Contract::findings() const {
    const std::lock_guard<std::mutex> lock(m_guard);
    return m_books.findings.kept();
}

std::vector<std::string> Contract::unusedSuppressions() const {
    const std::lock_guard<std::mutex> lock(m_guard);
    return m_books.findings.unusedSuppressions();
}

Place Contract::placeNow(std::size_t call, std::optional<HostFunction> function) const {
    const std::lock_guard<std::mutex> lock(m_guard);
    const bool isInAddOn = m_books.entries.size() > 1 || m_books.threads.last() == nullptr;
    const std::shared_ptr<const Entry> entry = isInAddOn ? m_books.entries.back().entry : m_books.threads.last();
    return placeOf({entry, entry->thread, call, function});
}

// A call on a thread that is in no add-on comes from the add-on that the host entered last.
Moment Contract::momentOf(std::size_t call, HostFunction function) {
    const std::size_t thread = m_threads.mine();
    if (const EntryBooks* const own = m_books.entryOf(thread)) return {own->entry, thread, call, function, &m_stacks};
    const std::shared_ptr<const Entry>& last = m_books.threads.last();
    const bool isStray = m_books.entries.size() == 1 && last != nullptr && last->thread != thread;
    return {isStray ? last : m_books.entries.back().entry, thread, call, function, &m_stacks};
}

EntryBooks& Contract::booksOf(std::size_t thread) {
    EntryBooks* const own = m_books.entryOf(thread);
    return own == nullptr ? m_books.entries.back() : *own;
}

Moment Contract::endOf(const EntryBooks& books) { return {books.entry, books.entry->thread, 0, std::nullopt}; }

Moment Contract::endBy(const void* exception) {
    Moment end = endOf(mine());
    end.stack = m_stacks.ofThrow(exception);
    return end;
}

void Contract::judgeEnd(EntryBooks& books, bool isGone) {
    const Moment now = endOf(books);
    FindingLog& findings = m_books.findings;
    const auto isInThisEntry = [&](const Entry& entry) { return &entry == now.entry.get(); };
    const auto isOfThisAddOn = [&](const Entry& entry) { return entry.addOnId == now.entry->addOnId; };
    books.scopes.endOfEntry(now, findings);
    books.status.endOfEntry(now, findings);
    m_books.holds.endOfEntry(now, findings);
    m_books.strings.endOfEntry(now, findings);
    m_books.argListLedger.reportLeaks(isInThisEntry, now, findings);
    m_books.stringLedger.reportLeaks(isInThisEntry, now, findings);
    if (now.entry->kind != Entry_e::Unloading || !isGone) return;
    m_books.mutexLedger.reportLeaks(isOfThisAddOn, now, findings);
    m_books.setLedger.reportLeaks(isOfThisAddOn, now, findings);
}

}  // namespace vexa::standin
