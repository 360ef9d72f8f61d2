// Drives the part of the layer that checks calls from eight threads. No sanitizer can run in an audit library, so the
// layer is a part of this program here, with the functions of the other host. The thread sanitizer then sees both.

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "contract/HostFunctionTable.h"
#include "contract/messages/EventMessage.h"
#include "layer/AddOns.h"
#include "layer/HostCalls.h"
#include "layer/Layer.h"
#include "load/Load.h"
#include "support/TemporaryFolder.h"
#include "vexa/AddOn.h"

namespace vexa::layer {
namespace {

using standin::EventMessage;
using standin::HostFunction;
using standin::Message_e;

constexpr int kThreads = 8;
const int kRounds = static_cast<int>(load::amount(500, 20000));
constexpr int kMostWaits = 30000;

using Counts = std::array<int, 6>;  // of messages, by their kind

int of(const Counts& counts, Message_e kind) { return counts[static_cast<std::size_t>(kind)]; }

// Reads what the layer sends, as the runner would, until the program ends.
class Receiver {
public:
    Receiver() : m_listener(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strcpy(address.sun_path, path().c_str());
        if (bind(m_listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
            listen(m_listener, 1) != 0) {
            throw std::runtime_error("no socket");
        }
        std::thread([this] { readAll(); }).detach();
    }

    std::string path() const { return m_folder.path("socket"); }
    int count(Message_e kind) const { return m_counts[static_cast<std::size_t>(kind)]; }
    int unreadable() const { return m_unreadable; }
    Counts counts() const {
        Counts counts{};
        std::copy(m_counts.begin(), m_counts.end(), counts.begin());
        return counts;
    }

    // Returns false if fewer messages of this kind arrive.
    bool waitFor(Message_e kind, int expected) const {
        for (int i = 0; i != kMostWaits && count(kind) < expected; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return count(kind) == expected;
    }

private:
    void readAll() {
        const int connection = accept(m_listener, nullptr, nullptr);
        std::string buffer(1 << 20, '\0');
        for (ssize_t size = 0; (size = recv(connection, buffer.data(), buffer.size(), 0)) > 0;) {
            const auto message = standin::readMessage({buffer.data(), static_cast<std::size_t>(size)});
            if (message) {
                ++m_counts[static_cast<std::size_t>(message->kind)];
            } else {
                ++m_unreadable;
            }
        }
    }

    tests::TemporaryFolder m_folder;
    int m_listener;
    std::array<std::atomic<int>, 6> m_counts{};
    std::atomic<int> m_unreadable{0};
};

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

// The layer of a process starts once and stays, so these tests share it.
class LayerThreads : public testing::Test {
protected:
    static void SetUpTestSuite() {
        static Receiver receiver;
        theReceiver = &receiver;
        Layer::start({receiver.path(), "vexaAddOn", true});
    }

    // Runs `work`, and returns how many messages of each kind it sends. An entry that ends is the last message of its
    // thread.
    template <class Work>
    static Counts messagesOf(int entries, const Work& work) {
        const Counts before = theReceiver->counts();
        work();
        EXPECT_TRUE(theReceiver->waitFor(Message_e::EntryEnded, of(before, Message_e::EntryEnded) + entries));
        Counts sent = theReceiver->counts();
        for (std::size_t i = 0; i != sent.size(); ++i) sent[i] -= before[i];
        return sent;
    }

    static Receiver* theReceiver;
};

Receiver* LayerThreads::theReceiver = nullptr;

TEST_F(LayerThreads, EightThreadsOfACommandCallAtOnce) {
    const Counts messages = messagesOf(2, [] { loaded<useThreads>()->execute("CALL", nullptr); });
    EXPECT_EQ(of(messages, Message_e::CallBegan), kThreads * kRounds * 4);
    EXPECT_EQ(of(messages, Message_e::CallEnded), kThreads * kRounds * 4);
    EXPECT_EQ(of(messages, Message_e::EntryBegan), 2);  // the loading, and the command
    EXPECT_EQ(of(messages, Message_e::FindingMade), 0);
    EXPECT_EQ(theReceiver->unreadable(), 0);
}

TEST_F(LayerThreads, EightThreadsOfTheHostRunCommandsAtOnce) {
    const int entries = 1 + kThreads * kRounds;  // the loading, and the commands
    const Counts messages = messagesOf(entries, [] {
        static const VexaAddOn_s* const addOn = loaded<useObjects>();
        onEightThreads([] {
            for (int i = 0; i != kRounds; ++i) {
                char* errMsg = nullptr;
                addOn->execute("CALL", &errMsg);
            }
        });
    });
    EXPECT_EQ(of(messages, Message_e::EntryBegan), entries);
    EXPECT_EQ(of(messages, Message_e::CallBegan), kThreads * kRounds * 6);
    EXPECT_EQ(of(messages, Message_e::CallEnded), kThreads * kRounds * 6);
    EXPECT_EQ(of(messages, Message_e::FindingMade), 0);
    EXPECT_EQ(theReceiver->unreadable(), 0);
}

}  // namespace
}  // namespace vexa::layer
