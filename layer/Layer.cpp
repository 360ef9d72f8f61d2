#include "layer/Layer.h"

#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstring>
#include <memory>
#include <optional>
#include <thread>

#include "layer/ForeignMemory.h"
#include "layer/Throws.h"

namespace vexa::layer {
namespace {

using standin::CallEvent;
using standin::Entry_e;
using standin::EntryEvent;
using standin::Finding;
using standin::Message_e;

// A page that the kernel clears in a forked process, where the layer's locks may be held by threads that are not there.
struct Page {
    std::atomic<Layer*> layer;
};
std::atomic<Page*> thePage{nullptr};

thread_local long theThread = 0;

// Asking the kernel each time would cost more than all the rest.
long thisThread() {
    if (theThread == 0) theThread = syscall(SYS_gettid);
    return theThread;
}

}  // namespace

Layer::Layer(const Settings& settings)
    : m_connection(settings.socket),
      m_entryName(settings.entryName),
      m_isTraced(settings.isTraced),
      m_contract(m_threads, *this, m_codeObjects, handledException,
                 [this](const Finding& finding) { send(Message_e::FindingMade, finding); }) {}

Layer* Layer::current() {
    Page* const page = thePage.load(std::memory_order_acquire);
    return page == nullptr ? nullptr : page->layer.load(std::memory_order_relaxed);
}

bool wasForked() { return thePage != nullptr && Layer::current() == nullptr; }

void Layer::start(const Settings& settings) {
    if (thePage != nullptr) return;
    void* const memory = mmap(nullptr, sizeof(Page), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return;
    madvise(memory, sizeof(Page), MADV_WIPEONFORK);
    auto* const page = new (memory) Page{new Layer(settings)};
    thePage.store(page, std::memory_order_release);
}

void Layer::entryBegan(const void* frame, Entry_e kind, const std::string& addOnId, const std::string& command,
                       const void* function) {
    closeFrames(frame);
    closeLeftEntries();
    EntryEvent entry;
    entry.kind = kind;
    entry.addOnId = addOnId;
    entry.command = command;
    if (kind == Entry_e::Command) entry.macroLine = "command " + std::to_string(++m_commands);
    entry.threadNumber = m_threads.mine();
    entry.time = std::chrono::steady_clock::now();
    const std::size_t number = m_entries.add(frame, thisThread(), entry);
    if (!ThreadFrames::mine().push({frame, nullptr, number})) {
        m_entries.take(number);
        return;
    }
    m_contract.enter({kind, addOnId, command, entry.macroLine, 0, function});
    send(Message_e::EntryBegan, entry);
}

void Layer::loadingEnded(const void* frame, const AddOnList_s* identity, const char* addOnId) {
    auto entry = returnedTo(frame);
    if (!entry) return;
    entry->succeeded = addOnId != nullptr;
    if (addOnId == nullptr) {
        entry->error = entry->addOnId + ": it refuses to be loaded (its entry returned null)";
    } else {
        m_contract.name(addOnId);
        entry->addOnId = addOnId;
        const std::lock_guard<std::mutex> lock(m_guard);
        m_ids[identity] = addOnId;
    }
    endEntry(*entry);
}

void Layer::commandEnded(const void* frame, bool isAccepted, const char* errMsg) {
    auto entry = returnedTo(frame);
    if (!entry) return;
    entry->succeeded = isAccepted;
    if (!isAccepted) {
        entry->error = textOfError(errMsg);
        entry->failure = m_contract.placeOfFailure(errMsg);
    }
    m_contract.judgeErrorMessage(isAccepted, errMsg);
    endEntry(*entry);
}

void Layer::shutdownEnded(const void* frame) {
    auto entry = returnedTo(frame);
    if (!entry) return;
    entry->succeeded = true;
    endEntry(*entry, false);
}

void Layer::unloaded(const std::string& addOnId, bool hasShutdown) {
    EntryEvent entry;
    entry.kind = Entry_e::Unloading;
    entry.addOnId = addOnId;
    entry.succeeded = true;
    entry.threadNumber = m_threads.mine();
    entry.time = std::chrono::steady_clock::now();
    m_contract.enter({entry.kind, addOnId, "", ""});
    if (!hasShutdown) send(Message_e::EntryBegan, entry);
    m_contract.leave();
    if (!hasShutdown) sendEnd(thisThread(), entry);
}

void Layer::addOnMapped(const std::string& object) { send(Message_e::AddOnMapped, object); }

void Layer::note(const std::string& text) { send(Message_e::Note, text); }

std::string Layer::nameOf(const AddOnList_s* identity) const {
    const std::lock_guard<std::mutex> lock(m_guard);
    const auto found = m_ids.find(identity);
    return found == m_ids.end() ? "unknown" : found->second;
}

// Whether something was written past the end cannot be seen: the memory there belongs to the host.
standin::HostStringState Layer::stateOf(const char* string) const {
    const std::lock_guard<std::mutex> lock(m_guard);
    const auto found = m_stringSizes.find(string);
    if (found == m_stringSizes.end()) return {};
    return {found->second, true, std::memchr(string, '\0', found->second) != nullptr};
}

void Layer::learnString(const char* string, int size, const char*) {
    if (string == nullptr || size < 1) return;
    const std::lock_guard<std::mutex> lock(m_guard);
    m_stringSizes[string] = static_cast<std::size_t>(size);
}

void Layer::beginTracedCall(const void* frame, std::size_t number, standin::HostFunction function,
                            std::string arguments) {
    auto call = std::make_unique<CallEvent>();
    call->number = number;
    call->function = standin::nameOf(function);
    call->arguments = std::move(arguments);
    call->threadNumber = m_threads.mine();
    call->time = std::chrono::steady_clock::now();
    if (!ThreadFrames::mine().push({frame, call.get(), 0})) return;
    send(Message_e::CallBegan, *call.release());
}

void Layer::endTracedCall(const void* frame, std::string result) {
    CallEvent* const call = ThreadFrames::mine().pop(frame).call;
    if (call == nullptr) return;
    call->result = std::move(result);
    endCall(call);
}

void Layer::closeFrames(const void* frame) {
    // Two frames of a thread cannot have one address at a time.
    closeInnerFrames(static_cast<const char*>(frame) + 1);
}

void Layer::closeInnerFrames(const void* frame) {
    for (;;) {
        const ThreadFrame left = ThreadFrames::mine().popLeft(frame);
        if (left.address == nullptr) return;
        if (left.call != nullptr) {
            left.call->threw = true;
            endCall(left.call);
        } else if (auto entry = m_entries.take(left.entry)) {
            abandon({thisThread(), *entry});
        }
    }
}

void Layer::closeLeftEntries() {
    for (;;) {
        const std::vector<LeftEntry> left = m_entries.takeEnded();
        if (left.empty()) return;
        for (const LeftEntry& entry : left) abandon(entry);
    }
}

std::optional<EntryEvent> Layer::returnedTo(const void* frame) {
    closeInnerFrames(frame);
    return m_entries.take(ThreadFrames::mine().pop(frame).entry);
}

void Layer::endCall(CallEvent* call) {
    const std::unique_ptr<CallEvent> owner(call);
    call->time = std::chrono::steady_clock::now();
    send(Message_e::CallEnded, *call);
}

void Layer::endEntry(EntryEvent& entry, bool isGone) {
    m_contract.leave(isGone);
    sendEnd(thisThread(), entry);
}

void Layer::abandon(const LeftEntry& left) {
    EntryEvent entry = left.event;
    entry.error = "an exception or a jump escaped from ";
    switch (entry.kind) {
        case Entry_e::Loading: entry.error += "its entry " + m_entryName; break;
        case Entry_e::Command: entry.error += "the add-on"; break;
        case Entry_e::Unloading: entry.error += "its shutdown"; break;
    }
    m_contract.abandon(entry.threadNumber, entry.error);
    sendEnd(left.thread, entry);
}

void Layer::sendEnd(long thread, EntryEvent& entry) {
    entry.time = std::chrono::steady_clock::now();
    m_connection.send(standin::bytesOf({Message_e::EntryEnded, thread, entry}));
}

// The message may be no string of the host, or even no text. A string that was freed may not be read.
std::string Layer::textOfError(const char* errMsg) const {
    if (errMsg == nullptr) return "";
    const std::size_t size = stateOf(errMsg).size;
    if (size == 0) return readText(errMsg);
    return m_contract.nameOf(errMsg) == "unknown" ? "" : std::string(errMsg, strnlen(errMsg, size));
}

template <class Content>
void Layer::send(Message_e kind, const Content& content) {
    m_connection.send(standin::bytesOf({kind, thisThread(), content}));
}

}  // namespace vexa::layer
