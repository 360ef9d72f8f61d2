#include "vexa/toolbox/Set.h"

#include <charconv>
#include <cstdint>
#include <iterator>
#include <new>
#include <set>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "foreign/SetCalls.h"
#include "vexa/InvalidArgumentException.h"
#include "vexa/OutOfMemoryException.h"
#include "vexa/VexaUtil.h"

namespace vexa {
namespace {

[[noreturn]] void refuse(const std::string& text) { throw InvalidArgumentException("No set: " + text); }

}  // namespace

namespace foreign {

SetCalls& setCalls() {
    thread_local SetCalls calls;
    return calls;
}

}  // namespace foreign

namespace toolbox {
namespace {

// Reads the text of a set. It skips blanks, so the next character is never a blank.
class Reader {
public:
    explicit Reader(std::string_view text) : m_left(text) { skipBlanks(); }

    bool take(char c) {
        if (m_left.empty() || m_left.front() != c) return false;
        m_left.remove_prefix(1);
        skipBlanks();
        return true;
    }

    bool take(int64_t& number) {
        if (m_left.empty() || m_left.front() < '0' || m_left.front() > '9') return false;
        const char* const begin = m_left.data();
        const std::from_chars_result result = std::from_chars(begin, begin + m_left.size(), number);
        m_left.remove_prefix(static_cast<std::size_t>(result.ptr - begin));
        skipBlanks();
        return result.ec == std::errc();
    }

    bool isAtEnd() const { return m_left.empty(); }

private:
    void skipBlanks() {
        while (!m_left.empty() && (m_left.front() == ' ' || m_left.front() == '\t')) m_left.remove_prefix(1);
    }

    std::string_view m_left;
};

}  // namespace

struct Set::Impl {
    void insert(int64_t first, int64_t last) {
        for (int64_t member = first; member <= last; ++member) members.insert(member);
    }

    // Reads "a" or "a-b".
    void insertRange(Reader& reader, const std::string& text) {
        int64_t first = 0;
        if (!reader.take(first)) refuse(text);
        int64_t last = first;
        if (reader.take('-') && (!reader.take(last) || last < first)) refuse(text);
        insert(first, last);
    }

    std::set<int64_t> members;
};

Set::Set() : m_impl(std::make_unique<Impl>()) { ++foreign::setCalls().constructed; }

Set::Set(const Set& other) : m_impl(std::make_unique<Impl>(*other.m_impl)) { ++foreign::setCalls().copied; }

Set::Set(Set_s* handle) : m_impl(std::make_unique<Impl>()) {
    ++foreign::setCalls().constructedFromHandle;
    if (handle == nullptr) throw std::logic_error("There is no handle");
    int64_t first = 0;
    int64_t last = -1;
    while (VexaUtilSetNextRange(handle, last + 1, &first, &last) != 0) m_impl->insert(first, last);
}

Set::~Set() { ++foreign::setCalls().destroyed; }

void Set::clear() {
    ++foreign::setCalls().cleared;
    m_impl->members.clear();
}

void Set::assign(std::string text) {
    ++foreign::setCalls().assigned;
    try {
        Impl read;
        Reader reader(text);
        if (!reader.take('[')) refuse(text);
        if (!reader.take(']')) {
            do read.insertRange(reader, text);
            while (reader.take(','));
            if (!reader.take(']')) refuse(text);
        }
        if (!reader.isAtEnd()) refuse(text);
        *m_impl = std::move(read);
    } catch (const std::bad_alloc&) {
        throw OutOfMemoryException("Out of memory");
    }
}

std::string Set::toString() const {
    ++foreign::setCalls().rendered;
    std::string text = "[";
    const std::set<int64_t>& members = m_impl->members;
    for (auto first = members.begin(); first != members.end();) {
        auto last = first;
        for (auto next = std::next(last); next != members.end() && *next == *last + 1; ++next) last = next;
        if (text.size() > 1) text += ',';
        text += std::to_string(*first);
        if (last != first) text += '-' + std::to_string(*last);
        first = std::next(last);
    }
    return text + ']';
}

}  // namespace toolbox
}  // namespace vexa
