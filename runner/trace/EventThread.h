#pragma once

#include <unistd.h>

namespace vexa::runner {

/// The thread of the events that this thread passes to a trace, by the kernel's id, which other tools show too.
///
/// It is this thread itself, unless this thread passes on the events of another process.
class EventThread {
public:
    static long current() {
        if (id == 0) id = gettid();  // a system call at each event is slow
        return id;
    }
    /// The next events happened on the thread \p other.
    static void set(long other) { id = other; }

private:
    static inline thread_local long id = 0;
};

}  // namespace vexa::runner
