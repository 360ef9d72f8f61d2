#include "HostObjects.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "vexa/InvalidArgumentException.h"

void ThreadMutex_s::lock() {
    std::unique_lock<std::mutex> lock(m_guard);
    const std::thread::id caller = std::this_thread::get_id();
    if (m_owner == caller) return;
    m_changed.wait(lock, [this] { return m_owner == std::thread::id(); });
    if (!m_isClosed) m_owner = caller;
}

void ThreadMutex_s::unlock() {
    const std::lock_guard<std::mutex> lock(m_guard);
    if (m_owner != std::this_thread::get_id()) return;
    m_owner = std::thread::id();
    m_changed.notify_one();
}

bool ThreadMutex_s::close() {
    const std::lock_guard<std::mutex> lock(m_guard);
    if (m_isClosed || m_owner != std::thread::id()) return false;
    m_isClosed = true;
    m_changed.notify_all();
    return true;
}

void ArgList_s::append(std::string name, vexa::standin::ArgumentValue value) {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_arguments.push_back({std::move(name), std::move(value)});
}

void ArgList_s::clear() {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_arguments.clear();
}

std::vector<vexa::standin::Argument> ArgList_s::all() const {
    const std::lock_guard<std::mutex> lock(m_guard);
    return m_arguments;
}

bool Set_s::insert(int64_t first, int64_t last) {
    const std::lock_guard<std::mutex> lock(m_guard);
    try {
        m_members.insert(first, last);
        return true;
    } catch (const vexa::InvalidArgumentException&) {
        return false;
    }
}

bool Set_s::nextRange(int64_t from, int64_t& first, int64_t& last) const {
    using Range = vexa::toolbox::Set::Range;
    const std::lock_guard<std::mutex> lock(m_guard);
    const std::vector<Range>& ranges = m_members.ranges();
    const auto found = std::lower_bound(ranges.begin(), ranges.end(), from,
                                        [](const Range& range, int64_t member) { return range.last < member; });
    if (found == ranges.end()) return false;
    first = found->first;
    last = found->last;
    return true;
}

namespace vexa::standin {
namespace {

// Neither zero, so that a missing zero shows, nor likely in a text.
constexpr char kUnwritten = '\xa5';
constexpr std::size_t kGuardSize = 32;

}  // namespace

HostString::HostString(std::size_t size) : m_bytes(static_cast<char*>(std::malloc(size + kGuardSize))), m_size(size) {
    if (m_bytes == nullptr) throw std::bad_alloc();
    std::fill_n(m_bytes.get(), size + kGuardSize, kUnwritten);
}

std::string HostString::text() const {
    const char* const begin = m_bytes.get();
    return std::string(begin, std::find(begin, begin + m_size, '\0'));
}

bool HostString::isTerminated() const { return std::memchr(m_bytes.get(), '\0', m_size) != nullptr; }

bool HostString::isIntact() const {
    const char* const end = m_bytes.get() + m_size;
    return std::all_of(end, end + kGuardSize, [](char byte) { return byte == kUnwritten; });
}

}  // namespace vexa::standin
