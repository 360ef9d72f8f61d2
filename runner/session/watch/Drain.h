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

    /// The end to wait for; negative once all is read.
    int reader() const { return m_pipe.reader.get(); }
    int writer() const { return m_pipe.writer.get(); }
    /// Call this once the process that writes has its own copy of writer().
    void closeWriter() { m_pipe.writer.close(); }

    /// Reads what is in the pipe now, up to a limit, so that no writer holds up this process.
    void fetch();
    /// Reads, and hands out the text since the last call.
    KeptText take();

private:
    void trim();

    std::size_t m_most;
    bool m_keepsEnd;
    Pipe m_pipe;
    KeptText m_kept;
};

}  // namespace vexa::runner
