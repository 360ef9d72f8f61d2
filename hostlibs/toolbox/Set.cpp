#include "vexa/toolbox/Set.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <limits>
#include <new>
#include <numeric>
#include <system_error>
#include <utility>

#include "vexa/InvalidArgumentException.h"
#include "vexa/OutOfMemoryException.h"
#include "vexa/VexaUtil.h"

namespace vexa::toolbox {
namespace {

using Range = Set::Range;
using Ranges = std::vector<Range>;

constexpr char kOpenBracket = '[';
constexpr char kCloseBracket = ']';
constexpr char kComma = ',';
constexpr char kDash = '-';
constexpr char kColon = ':';

constexpr int64_t kHighestMember = std::numeric_limits<int64_t>::max();
constexpr int64_t kMostSteppedMembers = int64_t{1} << 24;
constexpr std::size_t kMostQuoted = 60;
constexpr std::size_t kUsualRanges = 4;
constexpr std::size_t kFewRanges = 256;
constexpr int kMostRadixBits = 11;  // the table of a digit fits into the cache

// Returns true if a range that starts at `first` overlaps or adjoins `run`. It must not start before `run`.
// (`first - 1` cannot overflow, because no member is negative. `run.last + 1` could.)
bool continues(const Range& run, int64_t first) { return first - 1 <= run.last; }

// One pass of a radix sort: copies `ranges` to `sorted`, ordered by the digit of `bits` bits at `shift`.
void sortByDigit(const Ranges& ranges, int shift, int bits, Ranges& sorted) {
    const std::size_t radix = std::size_t{1} << bits;
    const auto digitOf = [=](const Range& range) { return static_cast<std::size_t>(range.first >> shift) % radix; };
    std::vector<std::size_t> begins(radix + 1);
    for (const Range& range : ranges) ++begins[digitOf(range) + 1];
    std::partial_sum(begins.begin(), begins.end(), begins.begin());
    for (const Range& range : ranges) sorted[begins[digitOf(range)]++] = range;
}

// Returns the number of bits that the largest first member of a range has.
int bitsOfFirst(const Ranges& ranges) {
    int64_t ofAny = 0;
    for (const Range& range : ranges) ofAny |= range.first;
    int bits = 0;
    while (ofAny >> bits != 0) ++bits;
    return bits;
}

// Uses a radix sort for many ranges, because a sort by comparison would take longer than reading the text. The digits
// have equal widths, so that neither their number nor their tables are larger than necessary.
void sortByFirst(Ranges& ranges) {
    if (ranges.size() < kFewRanges) {
        std::sort(ranges.begin(), ranges.end(), [](const Range& a, const Range& b) { return a.first < b.first; });
        return;
    }
    const int bits = bitsOfFirst(ranges);
    const int digits = (bits + kMostRadixBits - 1) / kMostRadixBits;
    Ranges sorted(ranges.size());
    for (int i = 0; i < digits; ++i) {
        const int shift = bits * i / digits;
        const int end = bits * (i + 1) / digits;
        sortByDigit(ranges, shift, end - shift, sorted);
        ranges.swap(sorted);
    }
}

// Sorts `ranges` and joins those that overlap or adjoin. `ranges` must not be empty.
void normalize(Ranges& ranges) {
    sortByFirst(ranges);
    auto run = ranges.begin();
    for (auto range = run + 1; range != ranges.end(); ++range) {
        if (continues(*run, range->first)) {
            run->last = std::max(run->last, range->last);
        } else {
            *++run = *range;
        }
    }
    ranges.erase(run + 1, ranges.end());
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Reads the text form of a set. At the end of the text it reads the terminating NUL, which the text form does not
// allow, so no step needs to check for the end.
class Reader {
public:
    explicit Reader(const std::string& text) : m_text(text), m_at(text.c_str()) {}

    Ranges read() {
        if (!take(kOpenBracket)) refuse("'['");
        skipBlanks();
        if (!take(kCloseBracket)) readItems();
        if (m_at != m_text.data() + m_text.size()) refuse("nothing after ']'");
        if (!m_isAscending) normalize(m_ranges);
        return std::move(m_ranges);
    }

private:
    // Reads from the first item to the closing bracket, which it reads, too.
    void readItems() {
        m_ranges.reserve(kUsualRanges);
        for (;;) {
            const char* const otherwise = readItem();
            if (take(kCloseBracket)) return;
            if (!take(kComma)) refuse(otherwise);
            skipBlanks();
        }
    }

    // Returns the tokens that may follow the item, for an error message.
    const char* readItem() {
        const char* const begin = m_at;
        const int64_t first = readNumber();
        if (!takeSign(kDash)) {
            append(first, first);
            return "'-', ',' or ']'";
        }
        const int64_t last = readRangeEnd(first);
        if (!takeSign(kColon)) {
            append(first, last);
            return "':', ',' or ']'";
        }
        appendStepped(first, last, readStep(), begin);
        return "',' or ']'";
    }

    int64_t readRangeEnd(int64_t first) {
        const char* const begin = m_at;
        const int64_t last = readNumber();
        if (last < first) refuseAt(begin, "a range end of " + std::to_string(first) + " or more");
        return last;
    }

    int64_t readStep() {
        const char* const begin = m_at;
        const int64_t step = readNumber();
        if (step == 0) refuseAt(begin, "a step of 1 or more");
        return step;
    }

    // Reads a number and the blanks after it.
    int64_t readNumber() {
        constexpr std::ptrdiff_t kDigitsThatAlwaysFit = std::numeric_limits<int64_t>::digits10;
        const char* const begin = m_at;
        const char* end = begin;
        uint64_t digits = 0;
        for (; isDigit(*end); ++end) digits = digits * 10 + static_cast<uint64_t>(*end - '0');
        if (end == begin) refuse("a number");
        auto number = static_cast<int64_t>(digits);
        const bool mayOverflow = end - begin > kDigitsThatAlwaysFit;
        if (mayOverflow && std::from_chars(begin, end, number).ec != std::errc()) {
            refuse("a number up to " + std::to_string(kHighestMember));
        }
        m_at = end;
        skipBlanks();
        return number;
    }

    void append(int64_t first, int64_t last) {
        if (!m_ranges.empty()) {
            Range& run = m_ranges.back();
            const bool ascends = first >= run.first;
            if (ascends && continues(run, first)) {
                run.last = std::max(run.last, last);
                return;
            }
            m_isAscending = m_isAscending && ascends;
        }
        // Fill the run in place. Copying it from a temporary is slower: each copy waits for the previous store.
        Range& added = m_ranges.emplace_back();
        added.first = first;
        added.last = last;
    }

    // `begin` is the start of the range in the text.
    void appendStepped(int64_t first, int64_t last, int64_t step, const char* begin) {
        if (step == 1) {
            append(first, last);
            return;
        }
        const int64_t steps = (last - first) / step;
        if (steps >= kMostSteppedMembers - m_steppedMembers) {
            refuseAt(begin, "at most " + std::to_string(kMostSteppedMembers) + " members in stepped ranges");
        }
        m_steppedMembers += steps + 1;
        for (int64_t i = 0; i <= steps; ++i) append(first + i * step, first + i * step);
    }

    bool take(char c) {
        if (*m_at != c) return false;
        ++m_at;
        return true;
    }

    // Does the same as take(), and skips the blanks after the character.
    bool takeSign(char c) {
        if (!take(c)) return false;
        skipBlanks();
        return true;
    }

    void skipBlanks() {
        while (*m_at == ' ' || *m_at == '\t') ++m_at;
    }

    [[noreturn]] void refuse(const std::string& expected) const { refuseAt(m_at, expected); }

    [[noreturn]] void refuseAt(const char* at, const std::string& expected) const {
        const auto offset = static_cast<std::size_t>(at - m_text.data());
        throw InvalidArgumentException("Expected " + expected + " at column " + std::to_string(offset + 1) +
                                       " of set: " + quote(offset));
    }

    // Returns the text, or the part around `offset` if the text is long.
    std::string quote(std::size_t offset) const {
        if (m_text.size() <= kMostQuoted) return m_text;
        const std::size_t wanted = offset - std::min(offset, kMostQuoted / 2);
        const std::size_t begin = std::min(wanted, m_text.size() - kMostQuoted);
        const bool isCutBehind = begin + kMostQuoted < m_text.size();
        return (begin > 0 ? "..." : "") + m_text.substr(begin, kMostQuoted) + (isCutBehind ? "..." : "");
    }

    const std::string& m_text;
    const char* m_at;
    Ranges m_ranges;
    bool m_isAscending = true;
    int64_t m_steppedMembers = 0;
};

using DigitPairs = std::array<std::array<char, 2>, 100>;

// Returns the numbers from 0 to 99, two characters each.
constexpr DigitPairs digitPairs() {
    DigitPairs pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        pairs[i] = {static_cast<char>('0' + i / 10), static_cast<char>('0' + i % 10)};
    }
    return pairs;
}

constexpr DigitPairs kPairs = digitPairs();

// Builds a text. It collects characters in a buffer, because appending a few at a time to a string is slower.
class Writer {
public:
    void put(char c) { *m_at++ = c; }

    void put(const Range& run) {
        if (m_chunk.data() + m_chunk.size() - m_at < kLongestRun) flush();
        put(run.first);
        if (run.last != run.first) {
            put(kDash);
            put(run.last);
        }
    }

    std::string take() {
        flush();
        return std::move(m_text);
    }

private:
    // Two numbers of 19 digits, a dash, and the comma or bracket that follows.
    static constexpr std::ptrdiff_t kLongestRun = 2 * 19 + 2;
    static constexpr int64_t kTails = 10'000;

    void put(int64_t number) {
        if (number < kTails) return putShort(static_cast<std::size_t>(number));
        putHead(number / kTails);
        const auto tail = static_cast<std::size_t>(number % kTails);
        putPair(tail / 100);
        putPair(tail % 100);
    }

    // Writes a number below 10 000.
    void putShort(std::size_t number) {
        if (number < 100) return putUpTo99(number);
        putUpTo99(number / 100);
        putPair(number % 100);
    }

    void putUpTo99(std::size_t number) {
        if (number >= 10) return putPair(number);
        put(static_cast<char>('0' + number));
    }

    void putPair(std::size_t number) {
        std::memcpy(m_at, kPairs[number].data(), 2);
        m_at += 2;
    }

    // Writes all but the last four digits of a number. The numbers of a set ascend, so most have the same head as the
    // number before. The copy has a fixed size, which is faster; the next digits overwrite what is too much.
    void putHead(int64_t head) {
        if (head != m_head) keepHead(head);
        std::memcpy(m_at, m_headText.data(), m_headText.size());
        m_at += m_headSize;
    }

    void keepHead(int64_t head) {
        m_head = head;
        m_headSize = std::to_chars(m_headText.begin(), m_headText.end(), head).ptr - m_headText.begin();
    }

    void flush() {
        m_text.append(m_chunk.data(), m_at);
        m_at = m_chunk.data();
    }

    std::array<char, 4096> m_chunk;
    char* m_at = m_chunk.data();
    std::string m_text;
    int64_t m_head = 0;
    std::array<char, 16> m_headText{};
    std::ptrdiff_t m_headSize = 0;
};

void requireMember(int64_t member) {
    if (member >= 0) return;
    throw InvalidArgumentException("Expected a set member of 0 or more, but got " + std::to_string(member));
}

void requireRange(int64_t first, int64_t last) {
    requireMember(first);
    requireMember(last);
    if (first <= last) return;
    throw InvalidArgumentException("Expected a range in ascending order, but got " + std::to_string(first) + " to " +
                                   std::to_string(last));
}

// Returns the first run that ends at `member` or above.
template <typename Iterator>
Iterator firstEndingFrom(Iterator begin, Iterator end, int64_t member) {
    return std::partition_point(begin, end, [member](const Range& run) { return run.last < member; });
}

// Returns the first run that starts above `member`.
template <typename Iterator>
Iterator firstBeginningAbove(Iterator begin, Iterator end, int64_t member) {
    return std::partition_point(begin, end, [member](const Range& run) { return run.first <= member; });
}

}  // namespace

Set::Set() = default;

Set::Set(Set_s* handle) {
    if (handle == nullptr) return;
    Range run{0, -1};
    for (int64_t from = 0; VexaUtilSetNextRange(handle, from, &run.first, &run.last) != 0; from = run.last + 1) {
        if (run.first < from || run.last < run.first) return;  // a faulty host could make this loop run forever
        m_ranges.push_back(run);
        if (run.last == kHighestMember) return;
    }
}

Set::Set(const Set&) = default;
Set::Set(Set&&) noexcept = default;
Set& Set::operator=(const Set&) = default;

// A vector that is moved to itself may lose its elements; the exchange puts them back.
Set& Set::operator=(Set&& other) noexcept {
    m_ranges = std::exchange(other.m_ranges, {});
    return *this;
}

Set::~Set() = default;

void Set::clear() { m_ranges.clear(); }

void Set::assign(std::string text) {
    try {
        m_ranges = Reader(text).read();
    } catch (const std::bad_alloc&) {
        throw OutOfMemoryException("Out of memory");
    }
}

std::string Set::toString() const {
    Writer writer;
    writer.put(kOpenBracket);
    for (const Range& run : m_ranges) {
        if (&run != &m_ranges.front()) writer.put(kComma);
        writer.put(run);
    }
    writer.put(kCloseBracket);
    return writer.take();
}

bool Set::isEmpty() const { return m_ranges.empty(); }

uint64_t Set::size() const {
    uint64_t size = 0;
    for (const Range& run : m_ranges) size += static_cast<uint64_t>(run.last - run.first) + 1;
    return size;
}

bool Set::contains(int64_t member) const {
    const auto run = firstEndingFrom(m_ranges.begin(), m_ranges.end(), member);
    return run != m_ranges.end() && run->first <= member;
}

void Set::insert(int64_t member) { insert(member, member); }

void Set::insert(int64_t first, int64_t last) {
    requireRange(first, last);
    // The new range overlaps or adjoins the runs from `begin` to `end`. They become a single run.
    const auto begin = firstEndingFrom(m_ranges.begin(), m_ranges.end(), first - 1);
    const int64_t behind = last == kHighestMember ? last : last + 1;
    const auto end = firstBeginningAbove(begin, m_ranges.end(), behind);
    if (begin == end) {
        m_ranges.insert(begin, {first, last});
        return;
    }
    begin->first = std::min(begin->first, first);
    begin->last = std::max(std::prev(end)->last, last);
    m_ranges.erase(begin + 1, end);
}

void Set::erase(int64_t member) { erase(member, member); }

void Set::erase(int64_t first, int64_t last) {
    requireRange(first, last);
    // The runs from `begin` to `end` lose members. The first and the last of them may keep some.
    auto begin = firstEndingFrom(m_ranges.begin(), m_ranges.end(), first);
    auto end = firstBeginningAbove(begin, m_ranges.end(), last);
    if (begin == end) return;
    const bool keepsFront = begin->first < first;
    const bool keepsBack = std::prev(end)->last > last;
    if (keepsFront && keepsBack && end - begin == 1) {
        begin = std::prev(m_ranges.insert(end, {last + 1, begin->last}));
        begin->last = first - 1;
        return;
    }
    if (keepsFront) (begin++)->last = first - 1;
    if (keepsBack) (--end)->first = last + 1;
    m_ranges.erase(begin, end);
}

Set::const_iterator Set::begin() const { return {m_ranges.data(), m_ranges.data() + m_ranges.size()}; }

Set::const_iterator Set::end() const {
    const Range* const end = m_ranges.data() + m_ranges.size();
    return {end, end};
}

const std::vector<Set::Range>& Set::ranges() const { return m_ranges; }

}  // namespace vexa::toolbox
