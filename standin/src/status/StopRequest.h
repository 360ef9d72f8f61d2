#pragma once

#include <atomic>
#include <cstddef>
#include <limits>

namespace vexa::standin {

/// The state of the stop button: pressed, or to be pressed later.
///
/// Threads: any thread and any signal handler may call the functions, because they take no lock.
class StopRequest {
public:
    void press() noexcept { m_isPressed = true; }
    /// \param nth which check from now on, counted from 1.
    void pressAtCheck(std::size_t nth) noexcept { m_checksLeft = nth; }
    void pressAtPercent(int percent) noexcept { m_percent = percent; }
    /// Releases the button, and cancels a later press.
    void release() noexcept {
        m_checksLeft = 0;
        m_percent = kNever;
        m_isPressed = false;
    }
    bool isPressed() const noexcept { return m_isPressed; }

    /// Counts a check.
    /// \return true if the button is pressed now.
    bool isPressedAt(int percent) noexcept {
        if (percent >= m_percent || isLastCheck()) press();
        return isPressed();
    }

private:
    // No task shows this percentage.
    static constexpr int kNever = std::numeric_limits<int>::max();
    static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<std::size_t>::is_always_lock_free &&
                  std::atomic<int>::is_always_lock_free);

    bool isLastCheck() noexcept {
        std::size_t left = m_checksLeft;
        while (left != 0 && !m_checksLeft.compare_exchange_weak(left, left - 1)) {}
        return left == 1;
    }

    std::atomic<bool> m_isPressed{false};
    std::atomic<std::size_t> m_checksLeft{0};  // 0 if checks are not counted
    std::atomic<int> m_percent{kNever};
};

}  // namespace vexa::standin
