#include "calls/CallLog.h"

#include <utility>

namespace vexa::standin {

std::size_t CallLog::begin(Call call) {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_calls.push_back(std::move(call));
    return m_forgotten + m_calls.size() - 1;
}

void CallLog::end(std::size_t place, std::string result) {
    const std::lock_guard<std::mutex> lock(m_guard);
    if (place >= m_forgotten) m_calls[place - m_forgotten].result = std::move(result);
}

std::vector<Call> CallLog::all() const {
    const std::lock_guard<std::mutex> lock(m_guard);
    return m_calls;
}

void CallLog::clear() {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_forgotten += m_calls.size();
    m_calls.clear();
}

}  // namespace vexa::standin
