// The layer without the loader: the test is the program, gives the layer functions of a host, and receives its
// messages. The thread sanitizer can run this.

#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "contract/HostFunctionTable.h"
#include "contract/messages/EventMessage.h"
#include "layer/AddOns.h"
#include "layer/HostCalls.h"
#include "layer/Layer.h"
#include "system/processes/MessageSocket.h"
#include "vexa/AddOn.h"

struct AddOnList_s {};
struct Set_s {};

namespace vexa::layer {
namespace {

using standin::EventMessage;
using standin::HostFunction;
using standin::Message_e;

constexpr int kThreads = 8;
constexpr int kCommands = 50;
constexpr int kSetsOfACommand = 20;

AddOnList_s theIdentity;

// The functions of the add-on. It calls what the layer gives it.
template <class Function>
Function* checkedAs(const char* name) {
    return reinterpret_cast<Function*>(checkedFunction(name));
}

VexaBoolean execute(const char*, char**) {
    checkedAs<decltype(VexaUtilLockStart)>("VexaUtilLockStart")(&theIdentity);
    for (int i = 0; i != kSetsOfACommand; ++i) {
        Set_s* set = checkedAs<decltype(VexaUtilSetAlloc)>("VexaUtilSetAlloc")();
        checkedAs<decltype(VexaUtilSetDealloc)>("VexaUtilSetDealloc")(&set);
    }
    return 1;  // without VexaUtilLockFinish()
}

const VexaAddOn_s* loadAddOn(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "THREADS", nullptr, execute, nullptr};
    return &description;
}

// The functions of the host.
void lockStart(AddOnList_s*) {}
Set_s* allocateSet() { return new Set_s; }
void freeSet(Set_s** set) {
    delete *set;
    *set = nullptr;
}

// Counts the messages of the layer until it is destroyed.
class Receiver {
public:
    const std::string& path() const { return m_socket.path(); }

    /// Waits for the end of \p entries entries, and returns how many messages of each kind came until then.
    std::map<Message_e, int> countUntil(int entries) {
        while (m_count[Message_e::EntryEnded] < entries) {
            m_socket.receive([this](std::string_view bytes) {
                const auto message = standin::readMessage(bytes);
                ASSERT_TRUE(message.has_value());
                ++m_count[message->kind];
            });
        }
        return m_count;
    }

private:
    runner::MessageSocket m_socket;
    std::map<Message_e, int> m_count;
};

TEST(LayerThreads, MayEnterAnAddOnAtOnce) {
    Receiver receiver;
    Layer::start({receiver.path(), "vexaAddOn", true});
    setHostFunction(HostFunction::VexaUtilLockStart, reinterpret_cast<void*>(&lockStart));
    setHostFunction(HostFunction::VexaUtilSetAlloc, reinterpret_cast<void*>(&allocateSet));
    setHostFunction(HostFunction::VexaUtilSetDealloc, reinterpret_cast<void*>(&freeSet));
    const AddOnNumber number = addAddOn(reinterpret_cast<void*>(&loadAddOn), "threads.so");
    const VexaAddOn_s* const addOn = reinterpret_cast<decltype(&loadAddOn)>(entryOf(number))(&theIdentity);
    ASSERT_NE(addOn->execute, &execute);

    std::vector<std::thread> threads;
    for (int i = 0; i != kThreads; ++i) {
        threads.emplace_back([=] {
            char* error = nullptr;
            for (int command = 0; command != kCommands; ++command) addOn->execute("GO", &error);
        });
    }
    constexpr int kEntries = 1 + kThreads * kCommands;
    std::map<Message_e, int> count = receiver.countUntil(kEntries);
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(count[Message_e::EntryBegan], kEntries);
    EXPECT_EQ(count[Message_e::CallBegan], (kEntries - 1) * (1 + 2 * kSetsOfACommand));
    EXPECT_EQ(count[Message_e::CallEnded], count[Message_e::CallBegan]);
    EXPECT_EQ(count[Message_e::FindingMade], kEntries - 1);  // each command leaves its lock taken, and nothing else
    removeAddOn(number);
}

TEST(AddOnNumbers, AreFreeAgainAfterAnAddOnIsRemoved) {
    std::vector<AddOnNumber> numbers;
    for (;;) {
        const AddOnNumber number = addAddOn(reinterpret_cast<void*>(&loadAddOn), "one-of-many.so");
        if (number == kNoAddOn) break;
        numbers.push_back(number);
    }
    ASSERT_GE(numbers.size(), 200U);
    EXPECT_NE(entryOf(numbers.front()), entryOf(numbers.back()));
    removeAddOn(numbers[7]);
    EXPECT_EQ(addAddOn(reinterpret_cast<void*>(&loadAddOn), "another.so"), numbers[7]);
    for (const AddOnNumber number : numbers) removeAddOn(number);
}

}  // namespace
}  // namespace vexa::layer
