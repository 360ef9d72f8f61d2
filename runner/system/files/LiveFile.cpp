#include "system/files/LiveFile.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "system/files/Descriptor.h"
#include "system/files/OutputTarget.h"
#include "system/files/StandardStreams.h"

namespace vexa::runner {

LiveFile::LiveFile(const std::string& path)
    : m_path(isStandardOutput(path) ? kStandardOutputName : path), m_descriptor(openOutput(path)) {}

LiveFile::~LiveFile() {
    if (m_descriptor >= 0) ::close(m_descriptor);
}

void LiveFile::append(std::string_view text) {
    if (m_descriptor < 0 || !m_problem.empty()) return;
    if (!writeAll(m_descriptor, text)) giveUp(std::generic_category().message(errno));
}

void LiveFile::giveUp(const std::string& why) {
    if (m_problem.empty()) m_problem = why;
}

void LiveFile::close() {
    const int closed = ::close(std::exchange(m_descriptor, -1));
    if (!m_problem.empty()) refuseOutput(m_path, m_problem);
    if (closed != 0) refuseOutput(m_path);
}

}  // namespace vexa::runner
