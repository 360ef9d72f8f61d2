#include "system/files/LiveFile.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "system/files/OutputTarget.h"
#include "system/files/StandardStreams.h"

namespace vexa::runner {
namespace {

constexpr mode_t kLiveFileMode = 0666;

// Redirects the output of the program and its add-ons to the standard error output. Returns the former standard output.
Descriptor takeStandardOutput() {
    std::fflush(stdout);
    const int flags = fcntl(STDOUT_FILENO, F_GETFL);
    if (flags < 0) refuseOutput(kStandardOutputName);
    // If the standard output is closed, the program opened it for reading at its start, to keep its number occupied.
    if ((flags & O_ACCMODE) == O_RDONLY) refuseOutput(kStandardOutputName, "it is closed");
    Descriptor output(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    if (!output.isOpen() || dup2(STDERR_FILENO, STDOUT_FILENO) < 0) refuseOutput(kStandardOutputName);
    return output;
}

// Without O_NONBLOCK, opening a pipe that nobody reads would wait forever.
Descriptor openedStream(const std::string& path) {
    Descriptor stream(open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!stream.isOpen() && errno == ENXIO) refuseOutput(path, "no process reads it");
    if (!stream.isOpen() || fcntl(stream.get(), F_SETFL, 0) != 0) refuseOutput(path);
    return stream;
}

Descriptor openedOutput(const std::string& path, OldText_e oldText) {
    if (isStandardOutput(path)) return takeStandardOutput();
    if (isStream(path)) return openedStream(path);
    const int start = oldText == OldText_e::Kept ? O_APPEND : O_TRUNC;
    Descriptor file(open(outputTarget(path).c_str(), O_CREAT | start | O_WRONLY | O_CLOEXEC, kLiveFileMode));
    if (!file.isOpen()) refuseOutput(path);
    return file;
}

// Emptying a file that another process has mapped would kill that process, so the claim comes first.
Descriptor openedForMapping(const std::string& path) {
    Descriptor file(open(outputTarget(path).c_str(), O_CREAT | O_RDWR | O_CLOEXEC, kLiveFileMode));
    if (!file.isOpen()) return openedOutput(path, OldText_e::Removed);  // it may be writable, but not readable
    if (!claim(file.get())) refuseOutput(path, "another run writes it");
    if (ftruncate(file.get(), 0) != 0) refuseOutput(path);
    return file;
}

bool isReadable(int file) { return (fcntl(file, F_GETFL) & O_ACCMODE) == O_RDWR; }

}  // namespace

LiveFile::LiveFile(const std::string& path, Append_e how)
    : m_path(isStandardOutput(path) ? kStandardOutputName : path) {
    const bool isMapped = how == Append_e::ByMapping && !isStream(path);
    m_descriptor = isMapped ? openedForMapping(path) : openedOutput(path, OldText_e::Removed);
    if (isMapped && isReadable(m_descriptor.get())) m_tail = std::make_unique<MappedTail>(m_descriptor.get());
}

LiveFile::LiveFile(const std::string& path, OldText_e oldText)
    : m_path(isStandardOutput(path) ? kStandardOutputName : path), m_descriptor(openedOutput(path, oldText)) {}

void LiveFile::append(std::string_view text) {
    if (!m_descriptor.isOpen() || !m_problem.empty()) return;
    if (m_tail) text.remove_prefix(m_tail->append(text));
    const bool isWritable = text.empty() || !m_tail || m_tail->cut();
    if (!isWritable || !writeAll(m_descriptor.get(), text)) giveUp(std::generic_category().message(errno));
}

void LiveFile::giveUp(const std::string& why) {
    if (m_problem.empty()) m_problem = why;
}

void LiveFile::close() {
    if (m_tail && !m_tail->cut()) giveUp(std::generic_category().message(errno));
    const bool isClosed = m_descriptor.close();
    if (!m_problem.empty()) refuseOutput(m_path, m_problem);
    if (!isClosed) refuseOutput(m_path);
}

}  // namespace vexa::runner
