#include "vexastandin/Host.h"

#include <mutex>
#include <optional>
#include <utility>

#include "HostState.h"
#include "vexa/InvalidArgumentException.h"

namespace vexa::standin {
namespace {

// The process has one host, so here is the one thing that belongs to the process: the living hosts, linked from the
// innermost outwards. Without a constructor or destructor to run, so that it holds at any time of the process.
std::mutex livingGuard;
HostState* innermost = nullptr;

void enterLiving(HostState& state) {
    const std::lock_guard<std::mutex> lock(livingGuard);
    state.outer = innermost;
    innermost = &state;
}

// Hosts need not die in the reverse order of their birth.
void leaveLiving(HostState& state) {
    const std::lock_guard<std::mutex> lock(livingGuard);
    HostState** link = &innermost;
    while (*link != &state) link = &(*link)->outer;
    *link = state.outer;
}

// Gives back what an add-on's code leaves taken of the host's lock.
class LockBalance {
public:
    explicit LockBalance(HostLock& lock) : m_lock(lock), m_depth(lock.depth()) {}
    LockBalance(const LockBalance&) = delete;
    LockBalance& operator=(const LockBalance&) = delete;
    ~LockBalance() { m_lock.releaseDownTo(m_depth); }

    // What \p culprit left, as a line for people; nothing when it left nothing.
    std::optional<std::string> restore(const std::string& culprit) {
        const std::size_t tooOften = m_lock.releaseDownTo(m_depth);
        if (tooOften == 0) return std::nullopt;
        return culprit + " ended with the host's lock held " + std::to_string(tooOften) +
               (tooOften == 1 ? " time" : " times") + " too often";
    }

private:
    HostLock& m_lock;
    std::size_t m_depth;
};

// Takes over the error string that a command left, and releases it when it is one of the host's.
std::string takeErrorString(HostState& state, const char* errMsg, std::vector<std::string>& warnings) {
    if (errMsg == nullptr) return "";
    const std::shared_ptr<HostString> string = state.strings.find(errMsg);
    if (string == nullptr) {
        warnings.emplace_back("the command's error string is none of the host's, so it was not released");
        return errMsg;
    }
    state.strings.remove(errMsg);
    return string->text();
}

LoadError alreadyLoaded(const AddOn& refused, const AddOn& loaded) {
    return refused.refusal("an add-on " + loaded.info().id + " is already loaded, from " + loaded.info().path);
}

}  // namespace

HostState* HostState::current() {
    const std::lock_guard<std::mutex> lock(livingGuard);
    return innermost;
}

bool HostState::showChange(const std::optional<StatusLine>& change) const {
    if (!change) return false;
    if (const auto show = showStatus.copy()) show(*change);
    return true;
}

LoadError::LoadError(const std::string& message) : ExceptionBase(message, false) {}

LoadError::~LoadError() = default;

Host::Host() : m_state(std::make_unique<HostState>(*this)) { enterLiving(*m_state); }

Host::~Host() {
    try {
        unloadAddOns();
    } catch (...) {  // no memory for what there is to tell; what is still loaded goes with the state
    }
    leaveLiving(*m_state);
}

Host* Host::current() {
    HostState* const state = HostState::current();
    return state == nullptr ? nullptr : &state->host;
}

void Host::setBatchMode(bool active) { m_state->isBatchMode = active; }

void Host::setRecording(bool active) { m_state->isRecording = active; }

void Host::setProcessingJournal(bool active) { m_state->isProcessingJournal = active; }

void Host::setProcessingLayout(bool active) { m_state->isProcessingLayout = active; }

void Host::pressStop() noexcept { m_state->isStopPressed = true; }

void Host::releaseStop() noexcept { m_state->isStopPressed = false; }

bool Host::isStopPressed() const noexcept { return m_state->isStopPressed; }

void Host::failCall(const std::string& function, std::size_t nth, int result) {
    m_state->faults.add(hostFunction(function), nth, Fault{false, result});
}

void Host::throwFromCall(const std::string& function, std::size_t nth) {
    m_state->faults.add(hostFunction(function), nth, Fault{true, 0});
}

std::vector<Call> Host::calls() const { return m_state->calls.all(); }

std::vector<std::string> Host::calledFunctions() const {
    std::vector<std::string> functions;
    for (Call& call : calls()) functions.push_back(std::move(call.function));
    return functions;
}

void Host::clearCalls() { m_state->calls.clear(); }

void Host::setKeepsCalls(bool keeps) { m_state->calls.setKeeps(keeps); }

std::vector<RecordedCommand> Host::recordedCommands() const { return m_state->recorded.copy(); }

std::vector<JournalEntry> Host::journalEntries() const { return m_state->journal.copy(); }

std::vector<std::string> Host::dialogs() const { return m_state->dialogs.copy(); }

void Host::onDialog(std::function<void(const std::string&)> show) { m_state->showDialog.set(std::move(show)); }

StatusLine Host::statusLine() const { return m_state->status.line(); }

std::vector<StatusLine> Host::statusHistory() const { return m_state->status.history(); }

void Host::onStatus(std::function<void(const StatusLine&)> show) { m_state->showStatus.set(std::move(show)); }

AddOnInfo Host::loadAddOn(const std::string& path) {
    const auto addOn = std::make_shared<AddOn>(path);
    const auto loaded = m_state->addOns.copy();
    for (const auto& other : loaded) {
        // Loaded a second time it is still the same object, which must not be entered again.
        if (addOn->isSameObject(*other)) throw alreadyLoaded(*addOn, *other);
    }
    const LockBalance balance(m_state->lock);
    addOn->enter();
    for (const auto& other : loaded) {
        if (addOn->info().id == other->info().id) throw alreadyLoaded(*addOn, *other);
    }
    m_state->addOns.append(addOn);
    return addOn->info();
}

std::vector<AddOnInfo> Host::addOns() const {
    std::vector<AddOnInfo> infos;
    for (const auto& addOn : m_state->addOns.copy()) infos.push_back(addOn->info());
    return infos;
}

std::vector<std::string> Host::unloadAddOns() {
    std::vector<std::string> problems;
    auto loaded = m_state->addOns.copy();
    while (!loaded.empty()) {
        const std::string id = loaded.back()->info().id;
        LockBalance balance(m_state->lock);
        const std::optional<std::string> escaped = loaded.back()->shutDown();
        const std::optional<std::string> lockLeft = balance.restore("its shutdown");
        if (escaped) problems.push_back(id + ": " + *escaped);
        if (lockLeft) problems.push_back(id + ": " + *lockLeft);
        loaded.pop_back();
        m_state->addOns.set(loaded);
    }
    return problems;
}

CommandResult Host::run(const std::string& addOnId, const std::string& command) {
    std::shared_ptr<const AddOn> addOn;
    for (const auto& loaded : m_state->addOns.copy()) {
        if (loaded->info().id == addOnId) addOn = loaded;
    }
    if (addOn == nullptr) throw InvalidArgumentException("No add-on \"" + addOnId + "\" is loaded");

    CommandResult result;
    char* errMsg = nullptr;
    LockBalance balance(m_state->lock);
    const bool statusWasUp = statusLine().active;
    const std::optional<std::string> escaped = addOn->execute(command, result.accepted, errMsg);
    if (const auto lockLeft = balance.restore("the command")) result.warnings.push_back(*lockLeft);
    if (!statusWasUp && m_state->showChange(m_state->status.finish(m_state->calls.keeps()))) {
        result.warnings.emplace_back("the command ended with the status line up");
    }
    if (result.accepted && errMsg != nullptr) {
        result.warnings.emplace_back("the command succeeded, and yet left an error string");
    }
    const std::string error = takeErrorString(*m_state, errMsg, result.warnings);
    if (!result.accepted) result.error = escaped ? *escaped : error;
    return result;
}

}  // namespace vexa::standin
