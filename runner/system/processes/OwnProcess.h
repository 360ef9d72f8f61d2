#pragma once

#include <sys/mman.h>

#include <atomic>
#include <new>

#include "system/NonCopyable.h"

namespace vexa::runner {

/// Tells the process that made this object from processes that it forked. Asks without a system call, because it is
/// asked at each event. Threads: any.
class OwnProcess : NonCopyable {
public:
    /// \throws std::bad_alloc
    OwnProcess() {
        void* const memory = mmap(nullptr, sizeof(Mark), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) throw std::bad_alloc();
        madvise(memory, sizeof(Mark), MADV_WIPEONFORK);
        m_mark = new (memory) Mark(true);
    }
    ~OwnProcess() { munmap(m_mark, sizeof(Mark)); }

    /// Returns false in a forked process.
    bool isThis() const { return m_mark->load(std::memory_order_relaxed); }

private:
    using Mark = std::atomic<bool>;

    Mark* m_mark;  // the kernel clears it in a forked process
};

}  // namespace vexa::runner
