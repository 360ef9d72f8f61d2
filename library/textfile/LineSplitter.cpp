#include "textfile/LineSplitter.h"

#include <algorithm>
#include <array>
#include <new>

#include "textfile/FreshMemory.h"

#if defined(__SSE2__)
#include <immintrin.h>
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

// Ignores a lack of memory, because the estimate may be too high. The table then grows as lines are found.
void reserveFor(const char* text, std::size_t size, std::vector<uint64_t>& offsets, Pages pages) {
    constexpr std::size_t kLargeTable = std::size_t{4} << 20;  // a smaller one may share its pages with other data
    try {
        offsets.reserve(offsets.size() + estimatedLines(text, size));
        const std::size_t tableSize = offsets.capacity() * sizeof(uint64_t);
        if (pages == Pages::Large && tableSize >= kLargeTable) preferLargePages(offsets.data(), tableSize);
    } catch (const std::bad_alloc&) {}
}

// Collects the lines in their order. It appends many offsets to the table at once, which is faster than one by one.
class LineCollector {
public:
    explicit LineCollector(std::vector<uint64_t>& offsets)
        : m_offsets(offsets),
          m_pages(offsets.data() + offsets.size(), (offsets.capacity() - offsets.size()) * sizeof(uint64_t)),
          m_reserved(offsets.capacity()) {}

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
        const std::size_t count = m_offsets.size() + m_count;
        if (count <= m_reserved) m_pages.provide(m_offsets.data() + count);
        m_offsets.insert(m_offsets.end(), m_waiting.data(), m_waiting.data() + m_count);
        m_count = 0;
    }

    std::vector<uint64_t>& m_offsets;
    PagesAhead m_pages;  // of the reserved part of the table
    std::size_t m_reserved;
    std::array<uint64_t, kMostWaiting> m_waiting;
    std::size_t m_count = 0;
    uint64_t m_begin = 0;
};

#if defined(__SSE2__)

constexpr std::size_t kStride = 64;

// Ends a line after each byte of the stride at `at` whose bit is set. The lowest bit stands for the first byte.
void endLines(uint64_t lineFeeds, std::size_t at, LineCollector& lines) {
    lines.makeRoom(kStride);
    for (; lineFeeds != 0; lineFeeds &= lineFeeds - 1) {
        lines.endLine(at + static_cast<std::size_t>(__builtin_ctzll(lineFeeds)) + 1);
    }
}

// The functions below exist for vectors of 16 and of 32 bytes. They share no template, because a compiler can inline a
// function for AVX2 only into another one.

// Replaces the line feeds and carriage returns in the 16 bytes at `text` by NUL. Returns a bit for each line feed.
uint64_t splitSse2(char* text) {
    auto* const place = reinterpret_cast<__m128i*>(text);
    const __m128i bytes = _mm_loadu_si128(place);
    const __m128i lineFeeds = _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\n'));
    const __m128i carriageReturns = _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\r'));
    _mm_storeu_si128(place, _mm_andnot_si128(_mm_or_si128(lineFeeds, carriageReturns), bytes));
    return static_cast<uint64_t>(_mm_movemask_epi8(lineFeeds));
}

[[gnu::target("avx2")]] uint64_t splitAvx2(char* text) {
    auto* const place = reinterpret_cast<__m256i*>(text);
    const __m256i bytes = _mm256_loadu_si256(place);
    const __m256i lineFeeds = _mm256_cmpeq_epi8(bytes, _mm256_set1_epi8('\n'));
    const __m256i carriageReturns = _mm256_cmpeq_epi8(bytes, _mm256_set1_epi8('\r'));
    _mm256_storeu_si256(place, _mm256_andnot_si256(_mm256_or_si256(lineFeeds, carriageReturns), bytes));
    return static_cast<uint32_t>(_mm256_movemask_epi8(lineFeeds));
}

// Returns true if the 64 bytes at `text` have a NUL, that is, if their minimum is 0.
bool hasNulSse2(const char* text) {
    const auto* const place = reinterpret_cast<const __m128i*>(text);
    const __m128i lower = _mm_min_epu8(_mm_loadu_si128(place), _mm_loadu_si128(place + 1));
    const __m128i upper = _mm_min_epu8(_mm_loadu_si128(place + 2), _mm_loadu_si128(place + 3));
    return _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_min_epu8(lower, upper), _mm_setzero_si128())) != 0;
}

[[gnu::target("avx2")]] bool hasNulAvx2(const char* text) {
    const auto* const place = reinterpret_cast<const __m256i*>(text);
    const __m256i lowest = _mm256_min_epu8(_mm256_loadu_si256(place), _mm256_loadu_si256(place + 1));
    return _mm256_movemask_epi8(_mm256_cmpeq_epi8(lowest, _mm256_setzero_si256())) != 0;
}

// Splits the text in strides of 64 bytes. Stops at a stride that has a NUL or is shorter. Returns the position at which
// it stopped.
std::size_t splitStridesSse2(char* text, std::size_t size, LineCollector& lines) {
    std::size_t at = 0;
    for (; at + kStride <= size && !hasNulSse2(text + at); at += kStride) {
        const uint64_t lineFeeds = splitSse2(text + at) | splitSse2(text + at + 16) << 16 |
                                   splitSse2(text + at + 32) << 32 | splitSse2(text + at + 48) << 48;
        endLines(lineFeeds, at, lines);
    }
    return at;
}

[[gnu::target("avx2")]] std::size_t splitStridesAvx2(char* text, std::size_t size, LineCollector& lines) {
    std::size_t at = 0;
    for (; at + kStride <= size && !hasNulAvx2(text + at); at += kStride) {
        endLines(splitAvx2(text + at) | splitAvx2(text + at + 32) << 32, at, lines);
    }
    return at;
}

std::size_t splitStrides(char* text, std::size_t size, LineCollector& lines, Vectors vectors) {
    if (vectors == Vectors::Avx2) return splitStridesAvx2(text, size, lines);
    return vectors == Vectors::Sse2 ? splitStridesSse2(text, size, lines) : 0;
}

#else

std::size_t splitStrides(char*, std::size_t, LineCollector&, Vectors) { return 0; }

#endif

}  // namespace

Vectors widestVectors() {
#if defined(__SSE2__)
    return __builtin_cpu_supports("avx2") ? Vectors::Avx2 : Vectors::Sse2;
#else
    return Vectors::None;
#endif
}

void splitLines(char* text, std::size_t size, std::vector<uint64_t>& offsets, Pages pages, Vectors vectors) {
    if (*text == '\0') return;
    reserveFor(text, size, offsets, pages);
    LineCollector lines(offsets);
    std::size_t at = splitStrides(text, size, lines, vectors);
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
