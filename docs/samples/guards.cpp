#include <cstdio>
#include <future>
#include <mutex>
#include <string>
#include <vector>

#include "vexa/AddOn.h"
#include "vexautilutil/ExecuteCommand.h"
#include "vexautilutil/HostGuards.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"
#include "vexautilutil/Mutex.h"

using namespace vexa::vexautilutil;

namespace {

constexpr const char* kId = "SUMMER";

AddOnList_s* self = nullptr;  // the identity that the host gave to vexaAddOn()

// [threads]
// Adds up 1 to `count` on four threads. They call only the mutex functions of the host.
int64_t sumUpTo(int64_t count) {
    Mutex mutex;
    int64_t sum = 0;
    const auto add = [&](int64_t first) {
        int64_t part = 0;
        for (int64_t number = first; number <= count; number += 4) part += number;
        const std::lock_guard<Mutex> lock(mutex);
        sum += part;
    };
    // The destructor of each future waits for its thread, also when an exception is thrown.
    std::vector<std::future<void>> threads;
    for (int64_t first = 1; first <= 4; ++first) threads.push_back(std::async(std::launch::async, add, first));
    for (std::future<void>& thread : threads) thread.get();
    return sum;
}
// [threads]

// SUM COUNT = 100
class SumProcessor : public MacroCommandProcessorAbstract {
public:
    // [guards]
    bool processCommand() override {
        const AddOnIdLock lock(self);          // no other add-on runs until the lock is released
        const AuxDataSuspendBroadcast quiet;   // the host announces changed auxiliary data once, at the end
        const DataSetSuspendMarking unmarked;  // the host does not mark the data set as changed
        // All three guards end at each return, and when sumUpTo() throws.
        if (!readOptions()) return false;
        std::printf("%lld\n", static_cast<long long>(sumUpTo(m_count)));
        depositErrorMessage("Error: The host did not record SUM");
        return recordMacroCommand(kId);
    }
    // [guards]

    bool composeCommandString(std::string& command) const override {
        command = "SUM " + toNameValueAssignment("COUNT", m_count);
        return true;
    }

private:
    // [default-message]
    bool readOptions() {
        std::string word;
        std::string option;
        depositErrorMessage("Error: Expected SUM COUNT = number");  // a getter that fails replaces it
        if (!getCommand(word) || word != "SUM") return false;
        return getNextName(option) && option == "COUNT" && getInt64Value(m_count) && m_count <= 1000000;
    }
    // [default-message]

    int64_t m_count = 0;
};

constexpr VexaAddOn_s kDescription = {VEXA_ADDON_API_VERSION, kId, "Adds up", executeCommand<SumProcessor>, nullptr};

}  // namespace

// [entry]
const VexaAddOn_s* vexaAddOn(AddOnList_s* identity) {
    self = identity;
    return &kDescription;
}
// [entry]
