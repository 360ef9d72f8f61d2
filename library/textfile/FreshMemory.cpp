#include "textfile/FreshMemory.h"

#include <sys/mman.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <ctime>

namespace vexa::vexautilutil {
namespace {

constexpr std::size_t kBatch = std::size_t{256} << 10;  // stays in the processor's cache until it is filled
constexpr std::size_t kFewPages = std::size_t{1} << 20;
constexpr std::uintptr_t kSmallPage = 4096;
constexpr std::size_t kPage = std::size_t{2} << 20;
constexpr std::size_t kLargeText = std::size_t{32} << 20;

std::size_t toNextPage(const void* place) { return (kPage - reinterpret_cast<uintptr_t>(place) % kPage) % kPage; }

// Keeps `errno`, which may hold the reason of a failed read.
void advise(void* begin, std::size_t size, int advice) {
    const std::size_t toPage = toNextPage(begin);
    if (size < toPage + kPage) return;
    const int reason = errno;
    madvise(static_cast<char*>(begin) + toPage, (size - toPage) / kPage * kPage, advice);
    errno = reason;
}

// Reads a text piece by piece, and measures the processor time of this thread. After a failure it reads no more.
class Reader {
public:
    Reader(std::FILE* stream, char* text, std::size_t size)
        : m_stream(stream), m_at(text), m_left(size), m_pages(text, size) {}

    // Reads the next `size` bytes, but not past the end. Returns the time in nanoseconds.
    double read(std::size_t size) {
        const double start = now();
        for (std::size_t left = std::min(size, m_left); left > 0 && m_left > 0;) {
            const std::size_t batch = m_pages.canProvide() ? std::min(left, kBatch) : left;
            m_pages.provide(m_at + batch);
            readBatch(batch);
            left -= batch;
        }
        return now() - start;
    }

    char* at() const { return m_at; }
    std::size_t left() const { return m_left; }

private:
    void readBatch(std::size_t size) {
        const std::size_t got = std::fread(m_at, 1, size, m_stream);
        m_at += got;
        m_left = got == size ? m_left - got : 0;
    }

    static double now() {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
    }

    std::FILE* m_stream;
    char* m_at;
    std::size_t m_left;
    PagesAhead m_pages;
};

// Reads in large pages to the end, or until they took longer than 3/4 of the time that small pages would have taken.
// Returns false if it stopped before the end.
bool readInLargePages(Reader& reader, double smallPageTime) {
    double large = 0;
    double small = 0;
    while (reader.left() > 0 && large <= small * 3 / 4) {
        large += reader.read(kPage);
        small += smallPageTime;
    }
    return reader.left() == 0;
}

// Returns true if large pages came more quickly than small ones.
bool tryLargePages(Reader& reader) {
    const double smallPageTime = reader.read(kPage);
    reader.read(toNextPage(reader.at()));
    advise(reader.at(), reader.left(), MADV_HUGEPAGE);
    const bool arePaying = readInLargePages(reader, smallPageTime);
    if (!arePaying) advise(reader.at(), reader.left(), MADV_NOHUGEPAGE);
    return arePaying;
}

}  // namespace

void preferLargePages(void* begin, std::size_t size) { advise(begin, size, MADV_HUGEPAGE); }

PagesAhead::PagesAhead(void* begin, std::size_t size)
    : m_provided(static_cast<char*>(begin)), m_end(m_provided + size), m_canProvide(size >= kFewPages) {
    if (!m_canProvide) m_provided = m_end;
}

void PagesAhead::provideBatch(const char* end) {
#if defined(MADV_POPULATE_WRITE)
    const auto wanted = std::max(static_cast<std::size_t>(end - m_provided), kBatch);
    const std::size_t size = std::min(wanted, static_cast<std::size_t>(m_end - m_provided));
    const std::size_t beforePage = reinterpret_cast<std::uintptr_t>(m_provided) % kSmallPage;
    const int reason = errno;
    m_canProvide = madvise(m_provided - beforePage, beforePage + size, MADV_POPULATE_WRITE) == 0;
    errno = reason;
    m_provided += size;
#else
    m_canProvide = false;
#endif
    if (!m_canProvide) m_provided = m_end;
}

ReadText readFreshText(std::FILE* stream, char* text, std::size_t size) {
    Reader reader(stream, text, size);
    const bool hasLargePages = size >= kLargeText && tryLargePages(reader);
    reader.read(reader.left());
    return {static_cast<std::size_t>(reader.at() - text), hasLargePages};
}

}  // namespace vexa::vexautilutil
