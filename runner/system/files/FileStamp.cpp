#include "system/files/FileStamp.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <tuple>

#include "system/Descriptor.h"
#include "system/processes/Signals.h"

namespace vexa::runner {
namespace {

constexpr std::int64_t kNanoseconds = 1'000'000'000;

std::int64_t nanosecondsOf(const timespec& time) { return time.tv_sec * kNanoseconds + time.tv_nsec; }

}  // namespace

bool FileStamp::operator==(const FileStamp& other) const {
    return std::tie(isThere, device, number, size, written, changed) ==
           std::tie(other.isThere, other.device, other.number, other.size, other.written, other.changed);
}

FileStamp stampOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return {};
    return {true,
            status.st_dev,
            status.st_ino,
            status.st_size,
            nanosecondsOf(status.st_mtim),
            nanosecondsOf(status.st_ctim)};
}

// The system refuses a read lease if the file is open for writing, even if it is only mapped. A process that opens the
// file meanwhile makes the system send SIGIO, and waits until the lease is released.
bool isBeingWritten(const std::string& path) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen()) return false;
    const SignalHandler ignored(SIGIO, SIG_IGN);
    const bool isLeased = fcntl(file.get(), F_SETLEASE, F_RDLCK) == 0;
    if (isLeased) fcntl(file.get(), F_SETLEASE, F_UNLCK);
    return !isLeased && errno == EAGAIN;
}

}  // namespace vexa::runner
