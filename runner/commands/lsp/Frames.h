#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vexa::runner {

/// What FrameReader::next() found.
struct InputFrame {
    enum class Kind_e {
        Message,
        Refused,  ///< the header is wrong
        End       ///< the input is at its end, maybe in the middle of a message
    };
    Kind_e kind;
    std::string text;  ///< the message, or why the header is wrong
};

/// Reads the messages of an editor, each after a header with its size:
///
///     Content-Length: 42
///     (an empty line)
///     (42 bytes)
///
/// A header line ends with CR LF, or with LF only. Other fields of the header are ignored. After a wrong header the
/// size of its message is unknown, so the reader skips all bytes until it finds the next header that is right. A
/// message is never mistaken for a header, because JSON has no line feed within a text. It holds at most one message
/// and a few KiB.
class FrameReader {
public:
    static constexpr std::size_t kMostBytes = std::size_t{16} * 1024 * 1024;  ///< of a message

    /// \param descriptor  is not closed
    explicit FrameReader(int descriptor) : m_descriptor(descriptor) {}

    /// Waits for the next message.
    /// \throws std::system_error if the input cannot be read
    InputFrame next();

private:
    bool fill();
    bool readLine(std::string& line);
    InputFrame readMessage(std::size_t size);
    std::optional<InputFrame> takeField(std::string_view line, std::optional<std::size_t>& size);
    InputFrame refuse(std::string reason);

    int m_descriptor;
    std::string m_read;     // bytes that were read
    std::size_t m_at = 0;   // the first one that was not taken
    bool m_isLost = false;  // after a wrong header
};

/// Returns \p message after its header.
std::string framed(const std::string& message);

}  // namespace vexa::runner
