#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "system/Descriptor.h"

namespace vexa::runner {

/// Text of which a limited amount is kept.
struct KeptText {
    std::string text;
    std::uint64_t leftOut = 0;  ///< how many bytes were not kept
};

/// A pipe, and what this process has read from it.
class Drain {
public:
    /// \param most     how many bytes are kept at least
    /// \param keepsEnd whether the last bytes are kept, instead of the first ones
    /// \throws std::system_error
    Drain(std::size_t most, bool keepsEnd) : m_most(most), m_keepsEnd(keepsEnd) {}

    /// Returns the descriptor to wait for; negative after the end of the output.
    int reader() const { return m_pipe.reader.get(); }
    int writer() const { return m_pipe.writer.get(); }
    /// Call this once the process that writes has its own copy of writer().
    void closeWriter() { m_pipe.writer.close(); }

    /// Reads the current contents of the pipe, up to a limit, so that a fast writer cannot block this process.
    /// \throws std::system_error if the pipe cannot be read.
    void fetch();
    /// Calls fetch(), and returns the text since the last call.
    KeptText take();

private:
    void trim();

    std::size_t m_most;
    bool m_keepsEnd;
    Pipe m_pipe;
    KeptText m_kept;
};

}  // namespace vexa::runner
