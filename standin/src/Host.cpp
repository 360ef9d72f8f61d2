#include "vexastandin/Host.h"

#include <atomic>
#include <chrono>
#include <iterator>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "HostState.h"
#include "calls/CallSlots.h"
#include "calls/Whereabouts.h"
#include "contract/ThrowNotes.h"
#include "vexa/InvalidArgumentException.h"
#include "vexastandin/Finding.h"
#include "vexastandin/Observer.h"

namespace vexa::standin {
namespace {

// Protects changes of the links between living hosts. Host calls read the innermost host without this mutex, because a
// lock would be expensive there.
std::mutex livingGuard;

void enterLiving(HostState& state) {
    const std::lock_guard<std::mutex> lock(livingGuard);
    state.outer = HostState::innermost;
    HostState::innermost = &state;
}

// Hosts need not be destroyed in the reverse order of their construction.
void leaveLiving(HostState& state) {
    const std::lock_guard<std::mutex> lock(livingGuard);
    if (HostState::innermost == &state) {
        HostState::innermost = state.outer;
        return;
    }
    HostState* inner = HostState::innermost;
    while (inner->outer != &state) inner = inner->outer;
    inner->outer = state.outer;
}

// Releases the host's lock as often as the add-on has left it locked.
class LockBalance {
public:
    explicit LockBalance(HostLock& lock) : m_lock(lock), m_depth(lock.depth()) {}
    LockBalance(const LockBalance&) = delete;
    LockBalance& operator=(const LockBalance&) = delete;
    ~LockBalance() { m_lock.releaseDownTo(m_depth); }

private:
    HostLock& m_lock;
    std::size_t m_depth;
};

// Returns the error message of a command, and frees it if it is a string of the host.
std::string takeErrorString(HostState& state, const char* errMsg) {
    if (errMsg == nullptr) return "";
    const std::shared_ptr<HostString> string = state.strings.find(errMsg);
    if (string == nullptr) return state.strings.isRemoved(errMsg) ? "" : errMsg;  // a freed string cannot be read
    state.strings.remove(errMsg);
    return string->text();
}

// One entry into an add-on. Without setOutcome() it counts as failed.
class TimeInAddOn {
public:
    TimeInAddOn(HostState& state, Entry entry) : m_state(state) {
        m_event.kind = entry.kind;
        m_event.addOnId = entry.addOnId;
        m_event.command = entry.command;
        m_event.macroLine = entry.macroLine;
        m_event.threadNumber = state.threads.mine();
        m_event.thread = std::this_thread::get_id();
        m_event.function = entry.kind == Entry_e::Command ? entry.function : nullptr;
        state.contract.enter(std::move(entry));
        tell(&ObserverInterface::entryBegan);
    }
    TimeInAddOn(const TimeInAddOn&) = delete;
    TimeInAddOn& operator=(const TimeInAddOn&) = delete;
    ~TimeInAddOn() {
        m_state.contract.leave();
        tell(&ObserverInterface::entryEnded);
    }

    void setAddOn(const std::string& addOnId) {
        m_state.contract.name(addOnId);
        m_event.addOnId = addOnId;
    }
    void setOutcome(bool succeeded, const std::string& error) {
        m_event.succeeded = succeeded;
        m_event.error = error;
    }

private:
    void tell(void (ObserverInterface::*what)(const EntryEvent&)) {
        m_event.time = std::chrono::steady_clock::now();
        m_state.audience.tell([&](ObserverInterface& observer) { (observer.*what)(m_event); });
    }

    HostState& m_state;
    EntryEvent m_event;
};

// If an exception ended the command, a missing error message is not another finding.
void judgeOutcome(HostState& state, const std::optional<Escape>& escaped, bool accepted, const char* errMsg) {
    if (escaped) state.contract.judgeEscape(escaped->text, escaped->exception);
    if (!escaped || errMsg != nullptr) state.contract.judgeErrorMessage(accepted, errMsg);
}

Place placeOfFailure(Contract& contract, const std::optional<Escape>& escaped, const char* errMsg) {
    return escaped ? contract.placeOfEscape(escaped->exception) : contract.placeOfFailure(errMsg);
}

// The text of a command as the host passes it to the add-on.
std::string asPassed(const HostAnswers& answers, const std::string& command) {
    const char* const before = answers.truth(Fact::CommandStartsWithBlank) ? " " : "";
    const char* const after = answers.truth(Fact::CommandEndsWithLineBreak) ? "\n" : "";
    return before + command + after;
}

HostFunction knownFunction(const std::string& name) {
    const std::optional<HostFunction> function = findHostFunction(name);
    if (!function) throw InvalidArgumentException("The host has no function \"" + name + "\"");
    return *function;
}

const Rule& knownRule(const std::string& name) {
    const Rule* const rule = findRule(name);
    if (rule == nullptr) throw InvalidArgumentException("There is no rule \"" + name + '"');
    return *rule;
}

LoadError alreadyLoaded(const AddOn& refused, const AddOn& loaded) {
    return refused.refusal("an add-on " + loaded.info().id + " is already loaded, from " + loaded.info().path);
}

// `source` is the path of a shared object, or an entry.
template <class Source>
AddOnInfo load(HostState& state, const Source& source) {
    const auto addOn = std::make_shared<AddOn>(source);
    const auto loaded = state.addOns.copy();
    for (const auto& other : loaded) {
        // If a file is loaded twice, the loader returns the same object, whose entry must not be called again.
        if (addOn->hasSameEntry(*other)) throw alreadyLoaded(*addOn, *other);
    }
    const LockBalance balance(state.lock);
    state.contract.introduce(addOn->identity());
    addOn->enter();
    for (const auto& other : loaded) {
        if (addOn->info().id == other->info().id) throw alreadyLoaded(*addOn, *other);
    }
    state.addOns.append(addOn);
    return addOn->info();
}

template <class Source>
AddOnInfo loadInTime(HostState& state, const std::string& path, const Source& source) {
    TimeInAddOn time(state, {Entry_e::Loading, path, "", ""});
    try {
        AddOnInfo info = load(state, source);
        time.setAddOn(info.id);
        time.setOutcome(true, "");
        return info;
    } catch (const LoadError& refusal) {
        time.setOutcome(false, refusal.message());
        throw;
    }
}

}  // namespace

// The living hosts, linked from the innermost outwards. This belongs to the process, because the C functions have no
// parameter for the host. It needs no constructor or destructor, so it is valid at any time of the process.
std::atomic<HostState*> HostState::innermost{nullptr};

bool HostState::showChange(const std::optional<StatusLine>& change) const {
    if (!change) return false;
    if (const auto show = showStatus.copy()) show(*change);
    audience.tell([&](ObserverInterface& observer) { observer.statusChanged(*change); });
    return true;
}

void HostState::setStyle(const std::vector<std::string>& path, const StyleTree::Offsets& offsets,
                         const StyleValue& value) {
    const auto [added, replaced] = styles.set(path, offsets, value);
    if (added != nullptr) {
        styleSets.add(added.get(), added);
        contract.lend(added.get());
    }
    if (replaced != nullptr) {
        styleSets.remove(replaced.get());
        contract.takeBack(replaced.get());
    }
}

void HostState::endWaiting() {
    lock.endWaiting();
    mutexes.forEach([](ThreadMutex_s& mutex) { mutex.endWaiting(); });
}

LoadError::LoadError(const std::string& message) : ExceptionBase(message, false) {}

LoadError::~LoadError() = default;

Host::Host() : m_state(std::make_unique<HostState>(*this)) {
    prepareForCalls();
    enterLiving(*m_state);
}

Host::~Host() {
    try {
        unloadAddOns();
    } catch (...) {  // no memory for findings; add-ons that are still loaded are unloaded with the state
    }
    leaveLiving(*m_state);
    m_state->endWaiting();
    waitForCallsOf(*m_state);
}

Host* Host::current() {
    HostState* const state = HostState::current();
    return state == nullptr ? nullptr : &state->host;
}

bool Host::isInAddOn() noexcept { return isThreadInAddOn; }

void Host::noteThrow(const void* exception) noexcept { vexa::standin::noteThrow(exception); }

void Host::setBatchMode(bool active) { m_state->isBatchMode = active; }

void Host::setRecording(bool active) { m_state->isRecording = active; }

void Host::setProcessingJournal(bool active) { m_state->isProcessingJournal = active; }

void Host::setProcessingLayout(bool active) { m_state->isProcessingLayout = active; }

std::vector<UnlikeFact> Host::answerLike(const HostFacts& facts) {
    const std::pair<Fact, std::atomic<bool>&> states[] = {{Fact::StateBatch, m_state->isBatchMode},
                                                          {Fact::StateRecording, m_state->isRecording},
                                                          {Fact::StateJournal, m_state->isProcessingJournal},
                                                          {Fact::StateLayout, m_state->isProcessingLayout}};
    HostAnswers answers;
    for (const auto& [name, answer] : facts) {
        const std::optional<Fact> fact = facts::findFact(name);
        if (!fact || !answers.take(*fact, answer).empty()) continue;
        for (const auto& [about, state] : states) {
            if (about == *fact) state = answers.truth(*fact);
        }
    }
    m_state->answers = answers;
    return unlikeFacts(facts);
}

bool Host::goesOnAfterFailure() const { return m_state->answers.truth(Fact::MacroGoesOnAfterFailure); }

void Host::setStyle(const std::vector<std::string>& path, const StyleValue& value) {
    m_state->setStyle(path, std::nullopt, value);
}

void Host::setStyle(const std::vector<std::string>& path, long offset1, long offset2, const StyleValue& value) {
    m_state->setStyle(path, std::pair(offset1, offset2), value);
}

void Host::pressStop() noexcept { m_state->stopRequest.press(); }

void Host::pressStopAtCheck(std::size_t nth) {
    if (nth == 0) throw InvalidArgumentException("The checks of the percentage are counted from 1");
    m_state->stopRequest.pressAtCheck(nth);
}

void Host::pressStopAtPercent(int percent) noexcept { m_state->stopRequest.pressAtPercent(percent); }

void Host::releaseStop() noexcept { m_state->stopRequest.release(); }

bool Host::isStopPressed() const noexcept { return m_state->stopRequest.isPressed(); }

void Host::failCall(const std::string& function, std::size_t nth, int result) {
    m_state->faults.add(knownFunction(function), nth, Fault{false, result});
}

void Host::throwFromCall(const std::string& function, std::size_t nth) {
    m_state->faults.add(knownFunction(function), nth, Fault{true, 0});
}

void Host::forgetFaults() { m_state->faults.clear(); }

std::vector<Call> Host::calls() const { return m_state->calls.all(); }

std::vector<std::string> Host::calledFunctions() const {
    std::vector<std::string> functions;
    for (Call& call : calls()) functions.push_back(std::move(call.function));
    return functions;
}

void Host::clearCalls() { m_state->calls.clear(); }

void Host::setKeepsCalls(bool keeps) { m_state->calls.setKeeps(keeps); }

std::vector<RecordedCommand> Host::recordedCommands() const { return m_state->recorded.copy(); }

void Host::clearRecordedCommands() { m_state->recorded.set({}); }

std::vector<JournalEntry> Host::journalEntries() const { return m_state->journal.copy(); }

std::vector<std::string> Host::dialogs() const { return m_state->dialogs.copy(); }

void Host::onDialog(std::function<void(const std::string&)> show) { m_state->showDialog.set(std::move(show)); }

void Host::onRecorded(std::function<void(const RecordedCommand&)> keep) { m_state->keepRecorded.set(std::move(keep)); }

void Host::onJournaled(std::function<void(const JournalEntry&)> keep) { m_state->keepJournaled.set(std::move(keep)); }

StatusLine Host::statusLine() const { return m_state->status.line(); }

std::vector<StatusLine> Host::statusHistory() const { return m_state->status.history(); }

void Host::onStatus(std::function<void(const StatusLine&)> show) { m_state->showStatus.set(std::move(show)); }

AddOnInfo Host::loadAddOn(const std::string& path) { return loadInTime(*m_state, path, path); }

AddOnInfo Host::linkAddOn(AddOnEntry entry) { return loadInTime(*m_state, kLinkedIn, entry); }

std::vector<AddOnInfo> Host::addOns() const {
    std::vector<AddOnInfo> infos;
    for (const auto& addOn : m_state->addOns.copy()) infos.push_back(addOn->info());
    return infos;
}

void Host::unloadAddOns() {
    const HostAnswers& answers = m_state->answers;
    auto loaded = m_state->addOns.copy();
    while (!loaded.empty()) {
        const bool isFirstFirst = answers.is(Fact::ShutdownOrder, "firstLoadedFirst");
        const auto next = isFirstFirst ? loaded.begin() : std::prev(loaded.end());
        TimeInAddOn time(*m_state, {Entry_e::Unloading, (*next)->info().id, "", "", 0, (*next)->shutdownFunction()});
        const LockBalance balance(m_state->lock);
        std::optional<Escape> escaped;
        if (answers.truth(Fact::ShutdownIsCalled)) escaped = (*next)->shutDown();
        if (escaped) m_state->contract.judgeEscape(escaped->text, escaped->exception);
        time.setOutcome(!escaped, escaped ? escaped->text : "");
        loaded.erase(next);
        m_state->addOns.set(loaded);
    }
}

CommandResult Host::run(const std::string& addOnId, const std::string& command, const std::string& macroLine) {
    std::shared_ptr<const AddOn> addOn;
    for (const auto& loaded : m_state->addOns.copy()) {
        if (loaded->info().id == addOnId) addOn = loaded;
    }
    if (addOn == nullptr) throw InvalidArgumentException("No add-on \"" + addOnId + "\" is loaded");

    CommandResult result;
    char* errMsg = nullptr;
    TimeInAddOn time(*m_state, {Entry_e::Command, addOnId, command, macroLine, 0, addOn->executeFunction()});
    const LockBalance balance(m_state->lock);
    const bool statusWasUp = statusLine().active;
    const std::optional<Escape> escaped = addOn->execute(asPassed(m_state->answers, command), result.accepted, errMsg);
    if (!result.accepted) result.place = placeOfFailure(m_state->contract, escaped, errMsg);
    judgeOutcome(*m_state, escaped, result.accepted, errMsg);
    if (!statusWasUp) m_state->showChange(m_state->status.finish(m_state->calls.keeps()));
    const std::string error = takeErrorString(*m_state, errMsg);
    if (!result.accepted) result.error = escaped ? escaped->text : error;
    time.setOutcome(result.accepted, result.error);
    return result;
}

void Host::setChecking(bool active) { m_state->contract.setOn(active); }

void Host::onFinding(std::function<void(Finding&)> complete) { m_state->contract.onFinding(std::move(complete)); }

std::vector<Finding> Host::violations() const { return m_state->contract.findings(); }

void Host::suppress(const std::string& rule) { m_state->contract.suppress(knownRule(rule)); }

std::vector<std::string> Host::unusedSuppressions() const { return m_state->contract.unusedSuppressions(); }

void Host::report(Finding finding) {
    finding.severity = knownRule(finding.rule).severity;
    m_state->contract.report(std::move(finding));
}

Place Host::lastCall() const {
    const CallProgress& progress = *m_state->progress;
    const std::size_t calls = progress.calls;
    const std::size_t function = progress.lastFunction;
    return m_state->contract.placeNow(
        calls, calls == 0 ? std::nullopt : std::optional<HostFunction>(static_cast<HostFunction>(function)));
}

void Host::setCallProgress(CallProgress* progress) {
    CallProgress& next = progress == nullptr ? m_state->ownProgress : *progress;
    next.calls = m_state->progress->calls.load();
    next.lastFunction = m_state->progress->lastFunction.load();
    m_state->progress = &next;
}

void Host::setObserver(ObserverInterface* observer) { m_state->audience.set(observer); }

}  // namespace vexa::standin
