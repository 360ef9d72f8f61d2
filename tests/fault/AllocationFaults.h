/// \file
/// Sweeps over the allocations of an operation. An operation is one line of a table:
///
///     {"Set::toString", [](Attempt& a) { const Set set = manyRuns(); a.makes([&] { return set.toString(); }); }},
///
/// What stands outside of makes() and changes() is set-up, and does not fail.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "support/FailingAllocator.h"

namespace vexa::tests {

/// One run of an operation, with so many allocations allowed.
class Attempt {
public:
    Attempt(long allowed, Failing failing) : m_allowed(allowed), m_failing(failing) {}
    Attempt(const Attempt&) = delete;
    Attempt& operator=(const Attempt&) = delete;

    /// An operation that returns something. The outcome is what \p show makes of it, or the exception.
    template <class Make, class Show>
    void makes(const Make& make, const Show& show) {
        run([&] {
            auto&& made = make();  // lives on without being moved
            stop();
            m_outcome = show(made);
        });
    }

    /// The same, for a text.
    template <class Make>
    void makes(const Make& make) {
        makes(make, [](const std::string& text) { return text; });
    }

    /// An operation that changes something. The outcome is the state that \p show tells afterwards, or the exception,
    /// and the state too when that is another than before.
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
    /// Whether an allocation failed.
    bool hasFailed() const { return m_hasFailed; }
    /// How many blocks more there are after the operation than before it, its result gone.
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
    /// The exception being handled.
    static std::string nameOfException();

    long m_allowed;
    Failing m_failing;
    std::optional<FailingAllocator> m_allocator;
    std::string m_outcome;
    bool m_hasFailed = false;
    long m_blocksLeft = 0;
};

/// What an operation says when memory runs out, where that is neither an exception nor a text of its own.
inline constexpr char kEndsTheProgram[] = "ended by signal 6";  ///< as what is noexcept does
inline constexpr char kUnharmed[] = "as if nothing had failed";

/// A public operation, and what may come of it when memory runs out.
struct Operation {
    const char* name;
    std::function<void(Attempt&)> run;
    std::vector<std::string> refusals = {"bad_alloc"};  ///< outcomes of Attempt, or one of the constants above
    /// The most blocks that may stay with the host when it throws: handles not released. Otherwise none may stay. Not
    /// looked at without a value.
    std::optional<long> mostLeft = std::nullopt;
};

/// What an operation was put through.
struct Sweep {
    long points = 0;                  ///< how many of its allocations have failed
    std::vector<std::string> faults;  ///< what was wrong, a line each
};

/// Lets each allocation of \p operation fail in turn, once or from there on, when it has run before.
Sweep sweepWarm(const Operation& operation, Failing failing);
/// The same, with a child of this process for each allocation. There the operation has never run, unless it has here;
/// afterwards it must work.
Sweep sweepCold(const Operation& operation, Failing failing);

/// \name The operations, by what they belong to
/// @{
std::vector<Operation> hostlibsOperations();
std::vector<Operation> macroOperations();
std::vector<Operation> processorOperations();
std::vector<Operation> hostOperations();
std::vector<Operation> fileOperations();
/// @}

}  // namespace vexa::tests
