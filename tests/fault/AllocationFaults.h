/// \file
/// Sweeps over the allocations of an operation. An operation is one line of a table:
///
///     {"Set::toString", [](Attempt& a) { const Set set = manyRuns(); a.makes([&] { return set.toString(); }); }},
///
/// The code outside of makes() and changes() prepares the operation. Its allocations do not fail.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "support/FailingAllocator.h"

namespace vexa::tests {

/// A run of an operation in which allocations fail after the allowed ones.
class Attempt {
public:
    Attempt(long allowed, Failing failing) : m_allowed(allowed), m_failing(failing) {}
    Attempt(const Attempt&) = delete;
    Attempt& operator=(const Attempt&) = delete;

    /// Runs an operation that returns a value. The outcome is \p show of the value, or the exception.
    template <class Make, class Show>
    void makes(const Make& make, const Show& show) {
        run([&] {
            auto&& made = make();  // extends its life without a move
            stop();
            m_outcome = show(made);
        });
    }

    /// Does the same for a text.
    template <class Make>
    void makes(const Make& make) {
        makes(make, [](const std::string& text) { return text; });
    }

    /// Runs an operation that changes an object. The outcome is the object's state afterwards, written by \p show, or
    /// the exception, followed by the state if it changed.
    template <class Change, class Show>
    void changes(const Change& change, const Show& show) {
        const std::string before = show();
        run([&] {
            change();
            stop();
        });
        const std::string after = show();
        if (m_outcome.empty()) {
            m_outcome = after;
        } else if (after != before) {
            m_outcome += ", leaving " + after;
        }
    }

    const std::string& outcome() const { return m_outcome; }
    /// Returns true if an allocation failed.
    bool hasFailed() const { return m_hasFailed; }
    /// Returns the number of blocks that the operation has not freed, without its result.
    long blocksLeft() const { return m_blocksLeft; }

private:
    template <class Action>
    void run(const Action& action) {
        const long before = FailingAllocator::liveBlocks();
        m_allocator.emplace(m_allowed, m_failing);
        std::string thrown;
        try {
            action();
        } catch (...) {
            stop();
            thrown = nameOfException();
        }
        const long own = blocksOf(m_outcome) + blocksOf(thrown);
        m_blocksLeft = FailingAllocator::liveBlocks() - before - own;
        if (!thrown.empty()) m_outcome = thrown;
    }

    // From here on allocations succeed again.
    void stop() {
        m_allocator.reset();
        m_hasFailed = FailingAllocator::hasFailed();
    }

    static long blocksOf(const std::string& text) { return text.capacity() > std::string().capacity() ? 1 : 0; }
    /// Returns the text of the exception being handled.
    static std::string nameOfException();

    long m_allowed;
    Failing m_failing;
    std::optional<FailingAllocator> m_allocator;
    std::string m_outcome;
    bool m_hasFailed = false;
    long m_blocksLeft = 0;
};

/// Outcomes of an operation that are neither an exception nor a text of the operation.
inline constexpr char kEndsTheProgram[] = "ended by signal 6";  ///< the outcome of a noexcept function
inline constexpr char kUnharmed[] = "as if nothing had failed";

/// A public operation, and its allowed outcomes if memory runs out.
struct Operation {
    const char* name;
    std::function<void(Attempt&)> run;
    std::vector<std::string> refusals = {"bad_alloc"};  ///< outcomes of Attempt, or one of the constants above
    /// The largest number of blocks that the host may still hold after an exception, for handles that were not freed.
    /// After any other outcome it may hold none. Without a value, the number is not checked.
    std::optional<long> mostLeft = std::nullopt;
};

/// The result of a sweep.
struct Sweep {
    long points = 0;                  ///< the number of allocations that failed
    std::vector<std::string> faults;  ///< the mistakes found, one per line
};

/// Makes each allocation of \p operation fail in turn, that one alone or with all later ones. The operation has already
/// run in this process.
Sweep sweepWarm(const Operation& operation, Failing failing);
/// Does the same in a new child process for each allocation, where the operation has not run yet. After the failure it
/// must work.
Sweep sweepCold(const Operation& operation, Failing failing);

/// \name The operations, by part of the library
/// @{
std::vector<Operation> hostlibsOperations();
std::vector<Operation> macroOperations();
std::vector<Operation> processorOperations();
std::vector<Operation> hostOperations();
std::vector<Operation> fileOperations();
/// @}

}  // namespace vexa::tests
