#pragma once

#include <sys/mman.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "system/NonCopyable.h"

namespace vexa::runner {

/// A text of limited length in shared memory. A longer text is cut off.
template <std::size_t kSize>
class SharedText {
public:
    void set(std::string_view text) noexcept {
        const std::size_t length = std::min(text.size(), kSize - 1);
        std::memcpy(m_text, text.data(), length);
        m_text[length] = '\0';
    }
    std::string text() const { return m_text; }

    static constexpr std::size_t capacity() { return kSize - 1; }

private:
    char m_text[kSize] = {};
};

/// A \p Value that this process shares with its child processes. It must outlive them.
template <class Value>
class SharedMemory : NonCopyable {
public:
    /// \throws std::bad_alloc
    SharedMemory() {
        void* const memory = mmap(nullptr, sizeof(Value), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) throw std::bad_alloc();
        m_value = new (memory) Value;
    }
    ~SharedMemory() { munmap(m_value, sizeof(Value)); }

    Value& operator*() const { return *m_value; }
    Value* operator->() const { return m_value; }

private:
    Value* m_value;
};

}  // namespace vexa::runner
