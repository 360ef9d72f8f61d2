// Compares Set with a simple reader: both must accept the same texts and have the same members. The canonical text must
// be read back unchanged.

#include <algorithm>
#include <limits>
#include <map>
#include <optional>

#include "Fuzz.h"
#include "vexa/InvalidArgumentException.h"
#include "vexa/toolbox/Set.h"

namespace vexa::fuzz {
namespace {

constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t kMostDonePlainly = 1000;
constexpr std::uint64_t kMostStepped = std::uint64_t{1} << 24;

// Holds runs by their first member. Runs neither overlap nor adjoin.
class PlainSet {
public:
    void insert(std::int64_t first, std::int64_t last) {
        for (auto run = m_runs.begin(); run != m_runs.end();) {
            const bool isApart =
                (run->second != kHighest && run->second + 1 < first) || (last != kHighest && last + 1 < run->first);
            if (isApart) {
                ++run;
                continue;
            }
            first = std::min(first, run->first);
            last = std::max(last, run->second);
            run = m_runs.erase(run);
        }
        m_runs[first] = last;
    }

    std::string text() const {
        std::string text = "[";
        for (const auto& [first, last] : m_runs) {
            if (text.size() > 1) text += ',';
            text += std::to_string(first);
            if (last != first) text += '-' + std::to_string(last);
        }
        return text + ']';
    }

private:
    std::map<std::int64_t, std::int64_t> m_runs;
};

class PlainReader {
public:
    explicit PlainReader(const std::string& text) : m_text(text) {}

    // Returns true if the text has too many members for this simple reader. The result of read() is then undefined.
    bool hasGivenUp() const { return m_hasGivenUp; }

    // Returns the canonical text of the set; nothing if the text is not a set.
    std::optional<std::string> read() {
        if (!take('[')) return std::nullopt;
        if (!take(']')) {
            do {
                if (!readItem()) return std::nullopt;
            } while (take(','));
            if (!take(']')) return std::nullopt;
        }
        if (m_at != m_text.size()) return std::nullopt;
        return m_set.text();
    }

private:
    void skipBlanks() {
        while (m_at < m_text.size() && (m_text[m_at] == ' ' || m_text[m_at] == '\t')) ++m_at;
    }

    bool take(char sign) {
        if (m_at != 0) skipBlanks();
        if (m_at == m_text.size() || m_text[m_at] != sign) return false;
        ++m_at;
        return true;
    }

    std::optional<std::int64_t> takeNumber() {
        skipBlanks();
        const std::size_t begin = m_at;
        std::int64_t number = 0;
        for (; m_at < m_text.size() && m_text[m_at] >= '0' && m_text[m_at] <= '9'; ++m_at) {
            const std::int64_t digit = m_text[m_at] - '0';
            if (number > (kHighest - digit) / 10) return std::nullopt;
            number = 10 * number + digit;
        }
        if (m_at == begin) return std::nullopt;
        return number;
    }

    bool readItem() {
        const auto first = takeNumber();
        if (!first) return false;
        auto last = first;
        std::optional<std::int64_t> step = 1;
        if (take('-')) {
            last = takeNumber();
            if (!last || *last < *first) return false;
            if (take(':')) step = takeNumber();
            if (!step || *step < 1) return false;
        }
        return *step == 1 ? insert(*first, *last) : insertStepped(*first, *last, *step);
    }

    bool insert(std::int64_t first, std::int64_t last) {
        m_set.insert(first, last);
        return true;
    }

    bool insertStepped(std::int64_t first, std::int64_t last, std::int64_t step) {
        const auto count = static_cast<std::uint64_t>((last - first) / step) + 1;
        if (count > kMostStepped - m_stepped) return false;
        m_stepped += count;
        m_hasGivenUp = m_hasGivenUp || m_stepped > kMostDonePlainly;
        if (m_hasGivenUp) return true;
        for (std::uint64_t i = 0; i < count; ++i) {
            const std::int64_t member = first + static_cast<std::int64_t>(i) * step;
            m_set.insert(member, member);
        }
        return true;
    }

    const std::string& m_text;
    std::size_t m_at = 0;
    std::uint64_t m_stepped = 0;
    bool m_hasGivenUp = false;
    PlainSet m_set;
};

// Returns nothing if the set refuses the text. The set must then be unchanged.
std::optional<std::string> assigned(const std::string& text) {
    toolbox::Set set;
    set.insert(7);
    try {
        set.assign(text);
    } catch (const InvalidArgumentException&) {
        require(set.toString() == "[7]", "a refused text leaves the set as it was", text);
        return std::nullopt;
    }
    return set.toString();
}

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    const std::string text = textOf(data, size);
    PlainReader reader(text);
    const auto plain = reader.read();
    if (reader.hasGivenUp()) return 0;
    const auto set = assigned(text);
    require(set == plain, "the set is what is written", text);
    if (set) require(assigned(*set) == set, "a set reads its own text back", *set);
    return 0;
}
