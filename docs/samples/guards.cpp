#include <cstdio>
#include <exception>
#include <future>
#include <mutex>
#include <string>
#include <vector>

#include "vexa/AddOn.h"
#include "vexautilutil/HostGuards.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"
#include "vexautilutil/Mutex.h"

using namespace vexa::vexautilutil;

namespace {

constexpr const char* kId = "SUMMER";

AddOnList_s* self = nullptr;  // what vexaAddOn() was given, for the lock

// [threads]
// Adds up 1 to `count` on four threads. These call nothing of the host but its mutex.
int64_t sumUpTo(int64_t count) {
    Mutex mutex;
    int64_t sum = 0;
    const auto add = [&](int64_t first) {
        int64_t part = 0;
        for (int64_t number = first; number <= count; number += 4) part += number;
        const std::lock_guard<Mutex> lock(mutex);
        sum += part;
    };
    std::vector<std::future<void>> threads;  // they are waited for, whatever happens
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
        const AddOnIdLock lock(self);          // no other add-on comes between
        const AuxDataSuspendBroadcast quiet;   // who listens hears of it once, at the end
        const DataSetSuspendMarking unmarked;  // the data set does not count as changed
        // Whichever of these fails, and however, all three end.
        return readOptions() && sumUp() && recordMacroCommand(kId);
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
        depositErrorMessage("Error: Expected SUM COUNT = number");  // unless a getter says more
        if (!getCommand(word) || word != "SUM") return false;
        return getNextName(option) && option == "COUNT" && getInt64Value(m_count) && m_count <= 1000000;
    }
    // [default-message]

    bool sumUp() {
        try {
            std::printf("%lld\n", static_cast<long long>(sumUpTo(m_count)));
            return true;
        } catch (const std::exception& failure) {  // no memory, no thread, no mutex
            depositErrorMessage(std::string("Error: ") + failure.what());
            return false;
        }
    }

    int64_t m_count = 0;
};

VexaBoolean execute(const char* command, char** errMsg) {
    try {
        SumProcessor processor;
        return processor.parseCommandString(command, errMsg);
    } catch (...) {
        return 0;  // no exception may escape to the host
    }
}

constexpr VexaAddOn_s kDescription = {VEXA_ADDON_API_VERSION, kId, "Adds up", execute, nullptr};

}  // namespace

// [entry]
const VexaAddOn_s* vexaAddOn(AddOnList_s* identity) {
    self = identity;
    return &kDescription;
}
// [entry]
