#include "AllocationFaults.h"

#include <algorithm>
#include <exception>
#include <new>
#include <typeinfo>

#include "Child.h"
#include "vexa/OutOfMemoryException.h"

namespace vexa::tests {
namespace {

constexpr long kUnlimited = 1000000;

struct Result {
    std::string outcome;
    bool hasFailed = false;
    long left = 0;    // blocks of the operation, while its objects still exist
    long leaked = 0;  // blocks after the objects were destroyed
};

Result attempt(const Operation& operation, long allowed, Failing failing) {
    Result result;
    const long before = FailingAllocator::liveBlocks();
    {
        Attempt attempt(allowed, failing);
        operation.run(attempt);
        result.hasFailed = attempt.hasFailed();
        result.left = attempt.blocksLeft();
        result.outcome = attempt.outcome();
    }
    const long kept = result.outcome.capacity() > std::string().capacity() ? 1 : 0;
    result.leaked = FailingAllocator::liveBlocks() - before - kept;
    return result;
}

bool isExpected(const Operation& operation, const std::string& outcome) {
    return std::find(operation.refusals.begin(), operation.refusals.end(), outcome) != operation.refusals.end();
}

bool endsTheProgram(const Operation& operation) { return isExpected(operation, kEndsTheProgram); }

// Returns the mistake in a run whose allocation failed; empty if there is none.
std::string judge(const Operation& operation, const Result& result, const std::string& untouched) {
    if (result.outcome == untouched) {
        return isExpected(operation, kUnharmed) ? "" : "the failure was swallowed";
    }
    if (!isExpected(operation, result.outcome)) return "unexpected: " + result.outcome;
    const bool hasThrown = result.outcome == "bad_alloc";
    if (operation.mostLeft && result.left > (hasThrown ? *operation.mostLeft : 0)) {
        return "left " + std::to_string(result.left) + " blocks with the host";
    }
    return "";
}

std::string leakOf(const Result& result) {
    return result.leaked == 0 ? "" : "leaked " + std::to_string(result.leaked) + " blocks";
}

std::string at(long allowed, const std::string& fault) {
    return "allocation " + std::to_string(allowed + 1) + ": " + fault;
}

// Runs the operation for the first time, with a failure, and then without one. Returns "untouched", "failed", or the
// mistake.
std::string firstRun(const Operation& operation, long allowed, Failing failing) {
    const Result first = attempt(operation, allowed, failing);
    const Result second = attempt(operation, kUnlimited, failing);
    const Result third = attempt(operation, kUnlimited, failing);
    if (third.outcome != second.outcome) return "works differently afterwards: " + third.outcome;
    if (third.leaked != 0) return leakOf(third);
    if (!first.hasFailed) return first.outcome == second.outcome ? "untouched" : "untouched, but " + first.outcome;
    const std::string fault = judge(operation, first, second.outcome);
    return fault.empty() ? "failed" : fault;
}

}  // namespace

std::string Attempt::nameOfException() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return "bad_alloc";
    } catch (const OutOfMemoryException&) {
        return "OutOfMemoryException";
    } catch (const std::exception& exception) {
        return std::string(typeid(exception).name()) + ": " + exception.what();
    } catch (...) {
        return "an exception of unknown type";
    }
}

Sweep sweepWarm(const Operation& operation, Failing failing) {
    Sweep sweep;
    const std::string untouched = attempt(operation, kUnlimited, failing).outcome;
    const auto fault = [&](long allowed, const std::string& text) {
        if (!text.empty()) sweep.faults.push_back(at(allowed, text));
    };
    sweep.points = sweepAllocations(failing, [&](long allowed, Failing how) {
        const Result result = attempt(operation, allowed, how);
        if (result.hasFailed) fault(allowed, judge(operation, result, untouched));
        if (!result.hasFailed && result.outcome != untouched) fault(allowed, "now returns " + result.outcome);
        fault(allowed, leakOf(result));
        return result.hasFailed;
    });
    return sweep;
}

Sweep sweepCold(const Operation& operation, Failing failing) {
    Sweep sweep;
    sweep.points = sweepAllocations(failing, [&](long allowed, Failing how) {
        const std::string verdict = inChild([&] { return firstRun(operation, allowed, how); });
        if (verdict == "untouched") return false;
        const bool isDocumentedEnd = verdict == kEndsTheProgram && endsTheProgram(operation);
        if (verdict != "failed" && !isDocumentedEnd) sweep.faults.push_back(at(allowed, verdict));
        return sweep.faults.size() < 10;
    });
    return sweep;
}

}  // namespace vexa::tests
