// Drives the part of the layer that checks calls from eight threads. No sanitizer can run in an audit library, so the
// layer is a part of this program here, with the functions of the other host. The thread sanitizer then sees both.

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <string_view>
#include <thread>
#include <vector>

#include "contract/HostFunctionTable.h"
#include "contract/messages/EventMessage.h"
#include "layer/AddOns.h"
#include "layer/HostCalls.h"
#include "layer/Layer.h"
#include "load/Load.h"
#include "system/processes/MessageSocket.h"
#include "vexa/AddOn.h"

namespace vexa::layer {
namespace {

using standin::HostFunction;
using standin::Message_e;

constexpr int kThreads = 8;
const int kRounds = static_cast<int>(load::amount(500, 20000));

template <class Function>
Function* checked(HostFunction function, Function* own) {
    setHostFunction(function, reinterpret_cast<void*>(own));
    return reinterpret_cast<Function*>(checkedFunction(nameOf(function)));
}

#define CHECKED(name) checked(HostFunction::name, &name)

void onEightThreads(void (*work)()) {
    std::vector<std::thread> threads;
    for (int i = 0; i != kThreads; ++i) threads.emplace_back(work);
    for (std::thread& thread : threads) thread.join();
}

// Four calls that any thread may make.
void useMutexes() {
    for (int i = 0; i != kRounds; ++i) {
        ThreadMutex_s* mutex = CHECKED(VexaUtilThreadMutexAlloc)();
        CHECKED(VexaUtilThreadMutexLock)(mutex);
        CHECKED(VexaUtilThreadMutexUnlock)(mutex);
        CHECKED(VexaUtilThreadMutexDealloc)(&mutex);
    }
}

// Six calls that a command may make.
VexaBoolean useObjects(const char*, char**) {
    ArgList_s* list = CHECKED(VexaUtilArgListAlloc)();
    CHECKED(VexaUtilArgListAppendString)(list, "P1", "FIELDMAP");
    CHECKED(VexaUtilArgListDealloc)(&list);
    char* string = CHECKED(VexaUtilStringAlloc)(8, "text");
    CHECKED(VexaUtilStringDealloc)(&string);
    CHECKED(VexaUtilMacroIsBatchModeActive)();
    return 1;
}

VexaBoolean useThreads(const char*, char**) {
    onEightThreads(useMutexes);
    return 1;
}

template <VexaBoolean (*execute)(const char*, char**)>
const VexaAddOn_s* entry(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "THREADS", nullptr, execute, nullptr};
    return &description;
}

template <VexaBoolean (*execute)(const char*, char**)>
const VexaAddOn_s* loaded() {
    static char identity = 0;
    const AddOnNumber number = addAddOn(reinterpret_cast<void*>(&entry<execute>), "threads.so");
    return reinterpret_cast<const VexaAddOn_s* (*)(AddOnList_s*)>(entryOf(number))(
        reinterpret_cast<AddOnList_s*>(&identity));
}

// The messages of the layer, counted by their kind.
class Messages {
public:
    void add(std::string_view bytes) {
        const auto message = standin::readMessage(bytes);
        ASSERT_TRUE(message.has_value());
        ++m_counts[static_cast<std::size_t>(message->kind)];
    }
    int operator[](Message_e kind) const { return m_counts[static_cast<std::size_t>(kind)]; }

private:
    std::array<int, 6> m_counts{};
};

// The layer of a process starts once and stays, so all tests share its socket.
runner::MessageSocket& socketOfLayer() {
    static runner::MessageSocket socket;
    Layer::start({socket.path(), "vexaAddOn", true});
    return socket;
}

// The messages that `work` sends.
template <class Work>
Messages messagesOf(const Work& work) {
    runner::MessageSocket& socket = socketOfLayer();
    Messages messages;
    std::atomic<bool> isDone{false};
    std::thread worker([&] {
        work();
        isDone = true;
    });
    for (bool isLast = false, hasMore = true; hasMore || !isLast;) {
        isLast = isDone;
        hasMore = socket.receive([&](std::string_view bytes) { messages.add(bytes); });
        if (!hasMore) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    worker.join();
    return messages;
}

TEST(LayerWithEightThreads, ChecksThemInOneCommand) {
    const Messages messages = messagesOf([] { loaded<useThreads>()->execute("CALL", nullptr); });
    EXPECT_EQ(messages[Message_e::EntryBegan], 2);  // the loading, and the command
    EXPECT_EQ(messages[Message_e::EntryEnded], 2);
    EXPECT_EQ(messages[Message_e::CallBegan], kThreads * kRounds * 4);
    EXPECT_EQ(messages[Message_e::CallEnded], kThreads * kRounds * 4);
    EXPECT_EQ(messages[Message_e::FindingMade], 0);
}

TEST(LayerWithEightThreads, ChecksACommandOnEach) {
    const Messages messages = messagesOf([] {
        static const VexaAddOn_s* const addOn = loaded<useObjects>();
        onEightThreads([] {
            for (int i = 0; i != kRounds; ++i) {
                char* errMsg = nullptr;
                addOn->execute("CALL", &errMsg);
            }
        });
    });
    const int entries = 1 + kThreads * kRounds;  // the loading, and the commands
    EXPECT_EQ(messages[Message_e::EntryBegan], entries);
    EXPECT_EQ(messages[Message_e::EntryEnded], entries);
    EXPECT_EQ(messages[Message_e::CallBegan], kThreads * kRounds * 6);
    EXPECT_EQ(messages[Message_e::CallEnded], kThreads * kRounds * 6);
    EXPECT_EQ(messages[Message_e::FindingMade], 0);
}

}  // namespace
}  // namespace vexa::layer
