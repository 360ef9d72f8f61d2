#pragma once

#include "system/Descriptor.h"
#include "system/NonCopyable.h"

namespace vexa::runner {

/// Sends what this process prints on an output to another file, as long as it lives.
class RedirectedOutput : NonCopyable {
public:
    /// \param output STDOUT_FILENO or STDERR_FILENO
    /// \param target a descriptor; is copied
    RedirectedOutput(int output, int target);
    ~RedirectedOutput();

    /// Where the output went before; negative if an add-on has closed it.
    int real() const { return m_real.get(); }

private:
    int m_output;
    Descriptor m_real;
};

}  // namespace vexa::runner
