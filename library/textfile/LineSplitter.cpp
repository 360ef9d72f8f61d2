#include "textfile/LineSplitter.h"

#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <new>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace vexa::vexautilutil {
namespace {

// Estimates the number of lines from a sample of blocks, to reserve memory once. Counting all lines would read the
// whole text once more.
std::size_t estimatedLines(const char* text, std::size_t size) {
    constexpr std::size_t kBlocks = 64;
    constexpr std::size_t kBlockSize = 4096;
    constexpr std::size_t kSampled = kBlocks * kBlockSize;
    if (size <= kSampled) return static_cast<std::size_t>(std::count(text, text + size, '\n')) + 1;
    std::size_t lines = 0;
    for (std::size_t i = 0; i < kBlocks; ++i) {
        const char* const block = text + size / kBlocks * i;
        lines += static_cast<std::size_t>(std::count(block, block + kBlockSize, '\n'));
    }
    const std::size_t estimate = lines * (size / kSampled + 1);
    return estimate + estimate / 16 + 1;
}

// Advises the kernel to use large pages for a large table, because allocating small pages one by one takes longer than
// filling them. The kernel may ignore the advice. A smaller table may share its pages with other data.
void preferLargePages(std::vector<uint64_t>& table) {
    constexpr std::size_t kLarge = std::size_t{32} << 20;
    constexpr std::size_t kPage = std::size_t{2} << 20;
    const std::size_t size = table.capacity() * sizeof(uint64_t);
    if (size < kLarge) return;
    auto* const begin = reinterpret_cast<char*>(table.data());
    const std::size_t toPage = kPage - reinterpret_cast<uintptr_t>(begin) % kPage;
    madvise(begin + toPage, (size - toPage) / kPage * kPage, MADV_HUGEPAGE);
}

// Ignores a lack of memory, because the estimate may be too high. The table then grows as lines are found.
void reserveFor(const char* text, std::size_t size, std::vector<uint64_t>& offsets) {
    try {
        offsets.reserve(offsets.size() + estimatedLines(text, size));
        preferLargePages(offsets);
    } catch (const std::bad_alloc&) {}
}

// Collects the lines in their order. It appends many offsets to the table at once, which is faster than one by one.
class LineCollector {
public:
    explicit LineCollector(std::vector<uint64_t>& offsets) : m_offsets(offsets) {}

    // Ends the current line. The next line starts at `next`. Call makeRoom() first.
    void endLine(uint64_t next) {
        m_waiting[m_count++] = m_begin;
        m_begin = next;
    }

    // Ends the text at `end`. Bytes after the last line feed are a line, too.
    void endText(uint64_t end) {
        makeRoom(1);
        if (end != m_begin) endLine(end);
        store();
    }

    // Makes room for `lines` calls of endLine().
    void makeRoom(std::size_t lines) {
        if (m_count + lines > kMostWaiting) store();
    }

private:
    static constexpr std::size_t kMostWaiting = 512;

    void store() {
        m_offsets.insert(m_offsets.end(), m_waiting.data(), m_waiting.data() + m_count);
        m_count = 0;
    }

    std::vector<uint64_t>& m_offsets;
    std::array<uint64_t, kMostWaiting> m_waiting;
    std::size_t m_count = 0;
    uint64_t m_begin = 0;
};

#if defined(__SSE2__)

constexpr std::size_t kStride = 64;

// Replaces the line feeds and carriage returns in the 16 bytes at `text` by NUL. Returns a bit for each line feed; the
// lowest bit stands for the first byte.
uint64_t splitVector(char* text) {
    auto* const place = reinterpret_cast<__m128i*>(text);
    const __m128i bytes = _mm_loadu_si128(place);
    const __m128i lineFeeds = _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\n'));
    const __m128i carriageReturns = _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\r'));
    _mm_storeu_si128(place, _mm_andnot_si128(_mm_or_si128(lineFeeds, carriageReturns), bytes));
    return static_cast<uint64_t>(_mm_movemask_epi8(lineFeeds));
}

// Returns true if the 64 bytes at `text` have a NUL, that is, if their minimum is 0.
bool hasNul(const char* text) {
    const auto* const place = reinterpret_cast<const __m128i*>(text);
    const __m128i lower = _mm_min_epu8(_mm_loadu_si128(place), _mm_loadu_si128(place + 1));
    const __m128i upper = _mm_min_epu8(_mm_loadu_si128(place + 2), _mm_loadu_si128(place + 3));
    return _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_min_epu8(lower, upper), _mm_setzero_si128())) != 0;
}

// Splits the text in strides of 64 bytes. Stops at a stride that has a NUL or is shorter. Returns the position at which
// it stopped.
std::size_t splitStrides(char* text, std::size_t size, LineCollector& lines) {
    std::size_t at = 0;
    for (; at + kStride <= size && !hasNul(text + at); at += kStride) {
        uint64_t lineFeeds = splitVector(text + at) | splitVector(text + at + 16) << 16 |
                             splitVector(text + at + 32) << 32 | splitVector(text + at + 48) << 48;
        lines.makeRoom(kStride);
        for (; lineFeeds != 0; lineFeeds &= lineFeeds - 1) {
            lines.endLine(at + static_cast<std::size_t>(__builtin_ctzll(lineFeeds)) + 1);
        }
    }
    return at;
}

#else

std::size_t splitStrides(char*, std::size_t, LineCollector&) { return 0; }

#endif

}  // namespace

void splitLines(char* text, std::size_t size, std::vector<uint64_t>& offsets) {
    if (*text == '\0') return;
    reserveFor(text, size, offsets);
    LineCollector lines(offsets);
    std::size_t at = splitStrides(text, size, lines);
    for (; text[at] != '\0'; ++at) {
        const char c = text[at];
        if (c != '\n' && c != '\r') continue;
        text[at] = '\0';
        if (c == '\r') continue;
        lines.makeRoom(1);
        lines.endLine(at + 1);
    }
    lines.endText(at);
}

}  // namespace vexa::vexautilutil
