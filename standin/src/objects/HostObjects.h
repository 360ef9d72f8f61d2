/// \file
/// The objects behind the handles of the host's C API. Each may be used from any thread.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "answers/HostAnswers.h"
#include "contract/HostStrings.h"
#include "objects/Handles.h"
#include "vexa/VexaUtil.h"
#include "vexa/toolbox/Set.h"

/// A mutex. Wrong use is ignored, so that the caller does not hang.
struct ThreadMutex_s {
public:
    /// Waits while another thread holds it. Ignored if the calling thread holds it.
    void lock();
    /// Ignored unless the calling thread holds it.
    void unlock();
    /// Ends its use: threads that wait for it continue without it.
    /// \return false, with nothing done, if it is held or was closed before.
    bool close();
    /// Ends its use even if it is held: threads that wait for it, now or later, continue without it.
    void endWaiting();

private:
    std::mutex m_guard;
    std::condition_variable m_changed;
    std::thread::id m_owner;  // the default id while it is free
    bool m_isClosed = false;
};

namespace vexa::standin {

/// The value of an argument: a string, an integer, or the address for a result.
using ArgumentValue = std::variant<std::string, long, double*, VexaArbParam*>;

/// A named argument of an extended host call.
struct Argument {
    std::string name;
    ArgumentValue value;
};

}  // namespace vexa::standin

/// A list of named arguments.
struct ArgList_s {
public:
    /// \return false if the host refuses the argument.
    bool append(std::string name, vexa::standin::ArgumentValue value, const vexa::standin::HostAnswers& answers);
    void clear();
    std::vector<vexa::standin::Argument> all() const;

private:
    bool takes(const std::string& name, const vexa::standin::ArgumentValue& value,
               const vexa::standin::HostAnswers& answers) const;

    mutable std::mutex m_guard;
    std::vector<vexa::standin::Argument> m_arguments;
};

/// A set of integers.
struct Set_s {
public:
    Set_s() = default;
    /// Holds \p members. It reads them as text, because the class libraries may be the host maker's own.
    explicit Set_s(const vexa::toolbox::Set& members);

    /// Adds the members \p first to \p last.
    /// \return false if the range is refused.
    bool insert(int64_t first, int64_t last, const vexa::standin::HostAnswers& answers);
    /// As VexaUtilSetNextRange().
    bool nextRange(int64_t from, int64_t& first, int64_t& last, const vexa::standin::HostAnswers& answers) const;

private:
    /// \param gap the difference between the ends of two runs that are joined: 1 if touching runs are.
    void add(int64_t first, int64_t last, int64_t gap);
    bool hasAll(int64_t first, int64_t last) const;

    mutable std::mutex m_guard;
    std::map<int64_t, int64_t> m_runs;  // the last member of each run by its first; runs are disjoint
};

namespace vexa::standin {

/// A string of the host. Guard bytes follow its end: they show an overrun of a few bytes. A memory checker sees larger
/// ones.
class HostString {
public:
    /// \throws std::bad_alloc
    explicit HostString(std::size_t size);

    char* bytes() const { return m_bytes.get(); }
    std::size_t size() const { return m_size; }
    /// The text. It ends at the last byte if the terminating zero is missing.
    std::string text() const;
    bool isTerminated() const;
    /// Whether the guard bytes are unchanged.
    bool isIntact() const;

private:
    struct Free {
        void operator()(char* bytes) const { std::free(bytes); }
    };

    std::unique_ptr<char, Free> m_bytes;
    std::size_t m_size;
};

/// The living strings of a host.
class HostStrings final : public Handles<HostString, char>, public HostStringsInterface {
public:
    HostStringState stateOf(const char* string) const override;
};

}  // namespace vexa::standin
