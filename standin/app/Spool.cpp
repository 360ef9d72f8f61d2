#include "Spool.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "Descriptor.h"

namespace vexa::runner {

// In memory, so that no folder for temporary files is needed.
Spool::Spool(std::string_view text) : m_descriptor(memfd_create("spool", MFD_CLOEXEC)) {
    if (m_descriptor >= 0 && writeAll(m_descriptor, text)) return;
    const std::error_code reason(errno, std::generic_category());
    if (m_descriptor >= 0) close(m_descriptor);
    throw std::system_error(reason);
}

Spool::~Spool() { close(m_descriptor); }

std::string Spool::path() const { return "/dev/fd/" + std::to_string(m_descriptor); }

}  // namespace vexa::runner
