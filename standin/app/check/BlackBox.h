#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace vexa::runner {

/// A text of a limited length in memory that two processes share. What does not fit is cut off.
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

/// What a test notes for the process that watches it. It lies in memory of both, so it outlives the test's process.
struct BlackBox {
    using Clock = std::chrono::steady_clock;

    SharedText<4096> tried;                   ///< what the test tries
    SharedText<262144> macro;                 ///< a macro that shows it, if there is one
    SharedText<4096> entry;                   ///< what the add-on does, or did last: `ID text`, `loading of FILE` …
    SharedText<1024> hostCall;                ///< the call of the host made last by that: number, function, arguments
    SharedText<1024> addOnIds;                ///< the ids of the add-ons, a line each, the one that is checked first
    std::atomic<bool> isInAddOn{false};       ///< whether the add-on is at work now
    std::atomic<bool> isInHostCall{false};    ///< whether the call has not returned
    std::atomic<bool> wantedMemory{false};    ///< whether an allocation failed for want of memory
    std::atomic<std::int64_t> lastChange{0};  ///< when the test last began or ended something
    static_assert(std::atomic<std::int64_t>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

    void touch() noexcept { lastChange = Clock::now().time_since_epoch().count(); }
    Clock::duration sinceChange() const noexcept {
        return Clock::now().time_since_epoch() - Clock::duration(lastChange.load());
    }
};

/// A black box that stays shared with the processes forked while it lives.
class SharedBlackBox {
public:
    /// \throws std::bad_alloc
    SharedBlackBox();
    SharedBlackBox(const SharedBlackBox&) = delete;
    SharedBlackBox& operator=(const SharedBlackBox&) = delete;
    ~SharedBlackBox();

    BlackBox& operator*() const { return *m_box; }
    BlackBox* operator->() const { return m_box; }

private:
    BlackBox* m_box;
};

}  // namespace vexa::runner
