#include "system/files/MappedTail.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>

#include "system/Descriptor.h"

namespace vexa::runner {
namespace {

// The first byte tells readers that the rest is there. A killed process has done its writes in the order of its
// instructions, so only the compiler must keep the order.
void publish(char* to, std::string_view text) {
    std::memcpy(to + 1, text.data() + 1, text.size() - 1);
    std::atomic_signal_fence(std::memory_order_seq_cst);
    *to = text.front();
}

// The file system then provides memory for many pages at once. If it is only asked for room on the disk, each page
// costs much more when it is used.
bool writeZeros(int file, off_t start) {
    static constexpr std::array<char, 4096> kZeros{};
    std::array<iovec, MappedTail::kMost / kZeros.size()> parts;
    parts.fill({const_cast<char*>(kZeros.data()), kZeros.size()});  // only read
    const ssize_t count = pwritev(file, parts.data(), static_cast<int>(parts.size()), start);
    return count == static_cast<ssize_t>(MappedTail::kMost);
}

}  // namespace

MappedTail::MappedTail(int file) : m_file(file) {
    struct stat status {};
    fstat(m_file, &status);
    m_device = status.st_dev;
    m_inode = status.st_ino;
}

std::size_t MappedTail::append(std::string_view text) {
    const std::size_t size = text.size();
    while (!text.empty() && (m_at != m_end || advance())) {
        const std::size_t count = std::min(text.size(), static_cast<std::size_t>(m_end - m_at));
        publish(m_at, text.substr(0, count));
        m_at += count;
        text.remove_prefix(count);
    }
    return size - text.size();
}

bool MappedTail::cut() {
    if (!m_isCut) {
        m_start = length();
        unmap();
        const auto end = static_cast<off_t>(m_start);
        const bool isDone = isOurs() && ftruncate(m_file, end) == 0 && lseek(m_file, end, SEEK_SET) == end;
        m_problem = isDone ? 0 : errno;
        m_isCut = true;
    }
    errno = m_problem;
    return m_problem == 0;
}

bool MappedTail::advance() {
    if (m_isCut) return false;
    const std::size_t start = length();
    unmap();
    m_start = start;
    if (isOurs() && map(static_cast<off_t>(start))) return true;
    cut();
    return false;
}

bool MappedTail::map(off_t start) {
    if (!writeZeros(m_file, start)) return false;
    void* const memory = mmap(nullptr, kMost, PROT_READ | PROT_WRITE, MAP_SHARED, m_file, start);
    if (memory == MAP_FAILED) return false;
    m_map = m_at = static_cast<char*>(memory);
    m_end = m_map + kMost;
    return true;
}

void MappedTail::unmap() {
    if (m_map != nullptr) munmap(m_map, kMost);
    m_map = m_at = m_end = nullptr;
}

// An add-on may have closed the file, and opened another one under the same number.
bool MappedTail::isOurs() const {
    struct stat status {};
    if (fstat(m_file, &status) != 0) return false;
    if (status.st_dev == m_device && status.st_ino == m_inode) return true;
    errno = EBADF;
    return false;
}

std::size_t textLengthOf(std::string_view content) {
    const std::size_t from = content.size() - std::min(content.size(), MappedTail::kMost);
    return std::min(content.find('\0', from), content.size());
}

bool claim(int file) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return fcntl(file, F_SETLK, &lock) == 0 || (errno != EAGAIN && errno != EACCES);
}

void cutAfterText(const std::string& path) {
    const Descriptor file(open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!file.isOpen() || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return;
    if (!claim(file.get())) return;
    const off_t from = std::max<off_t>(0, status.st_size - static_cast<off_t>(MappedTail::kMost));
    std::string end(static_cast<std::size_t>(status.st_size - from), ' ');
    if (pread(file.get(), end.data(), end.size(), from) != static_cast<ssize_t>(end.size())) return;
    const std::size_t length = textLengthOf(end);
    if (length != end.size()) (void)ftruncate(file.get(), from + static_cast<off_t>(length));
}

}  // namespace vexa::runner
