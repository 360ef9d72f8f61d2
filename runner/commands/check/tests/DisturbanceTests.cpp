#include "commands/check/tests/Tests.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "commands/check/tests/DisturbedCommand.h"
#include "commands/check/trial/AllocationFaults.h"
#include "vexastandin/HostFunctions.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kMostOfOneKind = 200;  // at most this many disturbances of one kind are tried for each command
constexpr const char* kCheckPercent = "VexaUtilStatusCheckPercentDone";
constexpr const char* kAllocString = "VexaUtilStringAlloc";

// ---- Host calls

struct Failure {
    int result;
    const char* text;  // as the log of calls shows it
};

// Returns the results of a failed call. Empty for a function without a result, because an add-on cannot see that it
// failed.
std::vector<Failure> failuresOf(standin::ResultKind_e kind) {
    switch (kind) {
        case standin::ResultKind_e::None: return {};
        case standin::ResultKind_e::Handle: return {{0, "null"}};
        case standin::ResultKind_e::Boolean: return {{0, "0"}};
        case standin::ResultKind_e::ReturnCode:
            return {{1, "GetValueReturnCode_OtherType"},
                    {2, "GetValueReturnCode_UnknownPath"},
                    {3, "GetValueReturnCode_NotAvailable"}};
    }
    return {};
}

Disturbance failing(const std::string& function, std::size_t nth, const Failure& failure) {
    const auto run = [=, result = failure.result](standin::Host& host, const std::function<void()>& command) {
        host.failCall(function, nth, result);
        command();
        host.forgetFaults();  // this time the command may have made fewer calls
    };
    return {"call " + std::to_string(nth) + " of " + function + " returns " + failure.text, run};
}

// Also lets the host run out of memory for the error message, because the command then runs other code.
Disturbance withoutMessage(Disturbance disturbance) {
    disturbance.what += ", and " + std::string(kAllocString) + " null";
    disturbance.run = [run = disturbance.run](standin::Host& host, const std::function<void()>& command) {
        host.failCall(kAllocString);
        run(host, command);
    };
    return disturbance;
}

// ---- The stop button

Disturbance stopping(std::size_t nth) {
    const auto run = [=](standin::Host& host, const std::function<void()>& command) {
        host.pressStopAtCheck(nth);
        command();
        host.releaseStop();
    };
    return {"the user presses stop before call " + std::to_string(nth) + " of " + kCheckPercent, run};
}

// ---- Allocations

// A command that runs out of memory has no memory for a message, either. After that, the library's getValueAsString()
// deliberately does not free its argument list. So both rules are suppressed.
Disturbance withoutMemory(std::size_t first, std::size_t last) {
    const auto run = [=](standin::Host&, const std::function<void()>& command) {
        const AllocationFaults faults(first, last);
        command();
    };
    const char* const which = first == last ? " fails" : " and all after it fail";
    return {"allocation " + std::to_string(first) + which, run, {"missing-errmsg", "leaked-arglist"}, true};
}

// At most kMostOfOneKind of the numbers from 1 to `count`, in the order in which to try them: the first, the last, and
// the others at random.
std::vector<std::size_t> sampled(Trial& trial, std::size_t count) {
    std::vector<std::size_t> numbers(count);
    std::iota(numbers.begin(), numbers.end(), std::size_t{1});
    if (count > 2) std::swap(numbers[1], numbers.back());
    for (std::size_t at = 2; at < count; ++at) std::swap(numbers[at], numbers[at + trial.random()() % (count - at)]);
    numbers.resize(std::min(count, kMostOfOneKind));
    return numbers;
}

// Adds the failures of a function that the command calls.
void addFailures(Trial& trial, RankedDisturbances& failures, const DisturbedCommand& command,
                 const standin::HostFunctionInfo& info) {
    const std::vector<std::string> results = command.resultsOf(info.name);
    std::size_t rank = 0;
    for (const std::size_t nth : sampled(trial, results.size())) {
        ++rank;
        for (const Failure& failure : failuresOf(info.result)) {
            // Skips a result that the undisturbed call returns, too.
            if (results[nth - 1] == failure.text) continue;
            const Disturbance one = failing(info.name, nth, failure);
            failures.emplace(rank, one);
            if (rank == 1 && info.name != std::string(kAllocString)) failures.emplace(rank, withoutMessage(one));
        }
    }
}

}  // namespace

Verdict hostCallFails(Trial& trial) {
    const auto failures = [&](const DisturbedCommand& command) {
        RankedDisturbances all;
        for (const standin::HostFunctionInfo& info : standin::hostFunctions()) addFailures(trial, all, command, info);
        return all;
    };
    return tryDisturbances(trial, failures, "nothing can be disturbed");
}

Verdict stopPressed(Trial& trial) {
    const auto stops = [&](const DisturbedCommand& command) {
        RankedDisturbances all;
        for (const std::size_t nth : sampled(trial, command.resultsOf(kCheckPercent).size())) {
            all.emplace(all.size(), stopping(nth));
        }
        return all;
    };
    return tryDisturbances(trial, stops, "no command shows a progress");
}

Verdict allocationFails(Trial& trial) {
    const auto failures = [&](const DisturbedCommand& command) {
        RankedDisturbances all;
        for (const std::size_t nth : sampled(trial, command.countAllocations())) {
            all.emplace(all.size(), withoutMemory(nth, nth));
            all.emplace(all.size(), withoutMemory(nth, AllocationFaults::kAll));
        }
        return all;
    };
    return tryDisturbances(trial, failures,
                           "no allocation was seen: the commands make none, or the add-on has its own operator new, "
                           "for example because it links the C++ library statically");
}

}  // namespace vexa::runner
