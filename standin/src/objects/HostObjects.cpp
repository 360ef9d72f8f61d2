#include "objects/HostObjects.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>
#include <new>
#include <system_error>
#include <utility>

namespace {

// Returns true if a run that starts at `first`, which is not before `run`, overlaps `run` or directly follows it.
bool continues(const std::pair<const int64_t, int64_t>& run, int64_t first) { return first - 1 <= run.second; }

}  // namespace

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

void ThreadMutex_s::endWaiting() {
    const std::lock_guard<std::mutex> lock(m_guard);
    m_isClosed = true;
    m_owner = std::thread::id();
    m_changed.notify_all();
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

Set_s::Set_s(const vexa::toolbox::Set& members) {
    const std::string text = members.toString();
    const char* const end = text.data() + text.size();
    const auto read = [end](const char*& at, int64_t& number) {
        const std::from_chars_result result = std::from_chars(at + 1, end, number);  // after a bracket, comma or dash
        at = result.ptr;
        return result.ec == std::errc();
    };
    int64_t first = 0;
    for (const char* at = text.data(); read(at, first);) {
        int64_t last = first;
        if (*at == '-') read(at, last);
        insert(first, last);
    }
}

bool Set_s::insert(int64_t first, int64_t last) {
    if (first < 0 || last < first) return false;
    const std::lock_guard<std::mutex> lock(m_guard);
    auto run = m_runs.try_emplace(first, last).first;
    run->second = std::max(run->second, last);
    if (run != m_runs.begin() && continues(*std::prev(run), first)) {
        std::prev(run)->second = std::max(std::prev(run)->second, run->second);
        run = std::prev(m_runs.erase(run));
    }
    for (auto next = std::next(run); next != m_runs.end() && continues(*run, next->first); next = m_runs.erase(next)) {
        run->second = std::max(run->second, next->second);
    }
    return true;
}

bool Set_s::nextRange(int64_t from, int64_t& first, int64_t& last) const {
    const std::lock_guard<std::mutex> lock(m_guard);
    auto found = m_runs.upper_bound(from);
    if (found != m_runs.begin() && std::prev(found)->second >= from) --found;
    if (found == m_runs.end()) return false;
    first = found->first;
    last = found->second;
    return true;
}

namespace vexa::standin {
namespace {

// Not zero, so that a missing terminating zero can be detected, and unlikely in a text.
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

HostStringState HostStrings::stateOf(const char* string) const {
    const std::shared_ptr<HostString> found = find(string);
    if (found == nullptr) return {};
    return {found->size(), found->isIntact(), found->isTerminated()};
}

}  // namespace vexa::standin
