#include "objects/HostObjects.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>
#include <limits>
#include <new>
#include <system_error>
#include <utility>

namespace {

using vexa::standin::Fact;
using vexa::standin::HostAnswers;

constexpr std::size_t kLongText = 100000;

// Whether a run that begins at `first`, which is not before `run`, is joined with it.
bool continues(const std::pair<const int64_t, int64_t>& run, int64_t first, int64_t gap) {
    return first - gap <= run.second;
}

char inLowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool isEqualInLowerCase(const std::string& text, const std::string& spelling) {
    return std::equal(text.begin(), text.end(), spelling.begin(), spelling.end(),
                      [](char a, char b) { return inLowerCase(a) == inLowerCase(b); });
}

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

bool ArgList_s::append(std::string name, vexa::standin::ArgumentValue value, const HostAnswers& answers) {
    const std::lock_guard<std::mutex> lock(m_guard);
    if (!takes(name, value, answers)) return false;
    m_arguments.push_back({std::move(name), std::move(value)});
    return true;
}

bool ArgList_s::takes(const std::string& name, const vexa::standin::ArgumentValue& value,
                      const HostAnswers& answers) const {
    const auto has = [this](const auto& isSame) {
        return std::any_of(m_arguments.begin(), m_arguments.end(),
                           [&](const vexa::standin::Argument& argument) { return isSame(argument.name); });
    };
    const auto isSame = [&](const std::string& other) { return other == name; };
    const auto isOtherCase = [&](const std::string& other) { return other != name && isEqualInLowerCase(other, name); };
    const auto* const text = std::get_if<std::string>(&value);
    const auto most = answers.limit(Fact::ListAppendMost);
    if (most && m_arguments.size() >= *most) return false;
    if (name.empty() && !answers.truth(Fact::ListAppendEmptyName)) return false;
    if (text != nullptr && text->empty() && !answers.truth(Fact::ListAppendEmptyText)) return false;
    if (text != nullptr && text->size() >= kLongText && !answers.truth(Fact::ListAppendLongText)) return false;
    if (!answers.truth(Fact::ListAppendSameNameTwice) && has(isSame)) return false;
    return answers.truth(Fact::ListAppendOtherCase) || !has(isOtherCase);
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
        add(first, last, 1);
    }
}

bool Set_s::insert(int64_t first, int64_t last, const HostAnswers& answers) {
    if (last < first) {
        if (!answers.is(Fact::SetInsertReversed, "swapped")) return answers.is(Fact::SetInsertReversed, "ignored");
        std::swap(first, last);
    }
    if (first < 0) {
        if (!answers.is(Fact::SetInsertNegative, "clipped")) return answers.is(Fact::SetInsertNegative, "ignored");
        first = 0;
        if (last < first) return true;
    }
    constexpr int64_t kLargest = std::numeric_limits<int64_t>::max();
    if (last == kLargest && !answers.truth(Fact::SetInsertLargest)) return false;
    const std::lock_guard<std::mutex> lock(m_guard);
    if (!answers.truth(Fact::SetInsertTwice) && hasAll(first, last)) return false;
    add(first, last, answers.is(Fact::SetInsertTouching, "[1-6]") ? 1 : 0);
    return true;
}

void Set_s::add(int64_t first, int64_t last, int64_t gap) {
    auto run = m_runs.try_emplace(first, last).first;
    run->second = std::max(run->second, last);
    if (run != m_runs.begin() && continues(*std::prev(run), first, gap)) {
        std::prev(run)->second = std::max(std::prev(run)->second, run->second);
        run = std::prev(m_runs.erase(run));
    }
    for (auto next = std::next(run); next != m_runs.end() && continues(*run, next->first, gap);
         next = m_runs.erase(next)) {
        run->second = std::max(run->second, next->second);
    }
}

bool Set_s::hasAll(int64_t first, int64_t last) const {
    const auto after = m_runs.upper_bound(first);
    return after != m_runs.begin() && std::prev(after)->second >= last;
}

bool Set_s::nextRange(int64_t from, int64_t& first, int64_t& last, const HostAnswers& answers) const {
    const std::lock_guard<std::mutex> lock(m_guard);
    auto found = m_runs.upper_bound(from);
    if (found != m_runs.begin() && std::prev(found)->second >= from) --found;
    const bool isRefused = from < 0 && !answers.truth(Fact::SetNextRangeNegativeFrom);
    if (found == m_runs.end() || isRefused) {
        if (!answers.truth(Fact::SetNextRangeKeepsOutputs)) first = last = 0;
        return false;
    }
    first = answers.is(Fact::SetNextRangeInside, "rest") ? std::max(found->first, from) : found->first;
    last = found->second;
    return true;
}

namespace vexa::standin {
namespace {

// Not zero, so that a missing terminating zero is seen, and unlikely in a text.
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
