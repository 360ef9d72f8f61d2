/// \file
/// What stands behind the handles of the host's C API. Each object may be used from any thread.
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

#include "contract/HostStrings.h"
#include "objects/Handles.h"
#include "vexa/VexaUtil.h"
#include "vexa/toolbox/Set.h"

/// A mutex. Misuse is ignored, so that the misuser goes on instead of hanging.
struct ThreadMutex_s {
public:
    /// Waits while another thread holds it; ignored when the calling thread does.
    void lock();
    /// Ignored unless the calling thread holds it.
    void unlock();
    /// Ends its use: who still waits for it goes on without it.
    /// \return false, with nothing done, when it is held or its use has ended before.
    bool close();
    /// Ends its use although it may be held: who waits for it, or asks for it from now on, goes on without it.
    void endWaiting();

private:
    std::mutex m_guard;
    std::condition_variable m_changed;
    std::thread::id m_owner;  // no thread's id while it is free
    bool m_isClosed = false;
};

namespace vexa::standin {

/// The value of an argument: a string, an integer, or where to store a result.
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
    void append(std::string name, vexa::standin::ArgumentValue value);
    void clear();
    std::vector<vexa::standin::Argument> all() const;

private:
    mutable std::mutex m_guard;
    std::vector<vexa::standin::Argument> m_arguments;
};

/// A set of integers.
struct Set_s {
public:
    Set_s() = default;
    /// Holds \p members, read from their text form: the class libraries may be the host maker's own.
    explicit Set_s(const vexa::toolbox::Set& members);

    /// Adds the members \p first to \p last.
    /// \return false when the range is refused.
    bool insert(int64_t first, int64_t last);
    /// As VexaUtilSetNextRange().
    bool nextRange(int64_t from, int64_t& first, int64_t& last) const;

private:
    mutable std::mutex m_guard;
    std::map<int64_t, int64_t> m_runs;  // the last member of each run by its first; runs are disjoint, never adjacent
};

namespace vexa::standin {

/// A string of the host. Bytes behind its end guard it: there a few bytes too many are seen here, and more by a memory
/// checker.
class HostString {
public:
    /// \throws std::bad_alloc
    explicit HostString(std::size_t size);

    char* bytes() const { return m_bytes.get(); }
    std::size_t size() const { return m_size; }
    /// The text, which ends at the last byte even when the terminating zero is missing.
    std::string text() const;
    bool isTerminated() const;
    /// Whether the bytes behind the end are as they were.
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
