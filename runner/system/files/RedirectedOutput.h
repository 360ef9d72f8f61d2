#pragma once

#include <fcntl.h>

#include <cstdio>

#include "system/Descriptor.h"
#include "system/NonCopyable.h"

namespace vexa::runner {

/// Redirects an output of this process to another file, as long as this object lives.
class RedirectedOutput : NonCopyable {
public:
    /// \param output STDOUT_FILENO or STDERR_FILENO
    /// \param target a descriptor, which is duplicated
    RedirectedOutput(int output, int target)
        : m_output(output), m_real(fcntl(output, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)) {
        std::fflush(stdout);
        dup2(target, m_output);
    }
    ~RedirectedOutput() {
        std::fflush(stdout);
        if (m_real.isOpen()) dup2(real(), m_output);
    }

    /// Returns the previous target of the output; negative if an add-on has closed it.
    int real() const { return m_real.get(); }

private:
    int m_output;
    Descriptor m_real;
};

}  // namespace vexa::runner
