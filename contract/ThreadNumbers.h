#pragma once

#include <cstddef>
#include <mutex>
#include <thread>
#include <unordered_map>

namespace vexa::standin {

/// Numbers threads from 1 in the order of their first calls, so that two runs use the same numbers.
/// Threads: any thread may call the functions.
class ThreadNumbers {
public:
    /// Returns the number of the calling thread.
    std::size_t mine() {
        const std::lock_guard<std::mutex> lock(m_guard);
        return m_numbers.try_emplace(std::this_thread::get_id(), m_numbers.size() + 1).first->second;
    }

private:
    std::mutex m_guard;
    std::unordered_map<std::thread::id, std::size_t> m_numbers;
};

}  // namespace vexa::standin
