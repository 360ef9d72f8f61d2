/// \file
/// What stands behind the handles of the host's C API. Each object may be used from any thread.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <variant>
#include <vector>

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

private:
    std::mutex m_guard;
    std::condition_variable m_changed;
    std::thread::id m_owner;  // no thread's id while it is free
    bool m_isClosed = false;
};

/// The value of an argument: a string, an integer, or where to store a result.
using ArgumentValue = std::variant<std::string, long, double*, VexaArbParam*>;

/// A list of named arguments.
struct ArgList_s {
public:
    void append(std::string name, ArgumentValue value);
    void clear();

private:
    struct Argument {
        std::string name;
        ArgumentValue value;
    };

    std::mutex m_guard;
    std::vector<Argument> m_arguments;
};

/// A set of integers.
struct Set_s {
public:
    /// Adds the members \p first to \p last.
    /// \return false when the range is refused.
    bool insert(int64_t first, int64_t last);
    /// As VexaUtilSetNextRange().
    bool nextRange(int64_t from, int64_t& first, int64_t& last) const;

private:
    mutable std::mutex m_guard;
    vexa::toolbox::Set m_members;
};

namespace vexa::standin {

/// A string of the host. Exactly as many bytes as asked for, so that a memory checker sees one written past its end.
class HostString {
public:
    /// \throws std::bad_alloc
    explicit HostString(std::size_t size);

    char* bytes() const { return m_bytes.get(); }
    /// The text, which ends at the last byte even when the terminating zero is missing.
    std::string text() const;

private:
    struct Free {
        void operator()(char* bytes) const { std::free(bytes); }
    };

    std::unique_ptr<char, Free> m_bytes;
    std::size_t m_size;
};

}  // namespace vexa::standin
