#pragma once

#include <unistd.h>

#include <string>
#include <string_view>
#include <utility>

namespace vexa::runner {

/// A file descriptor, which this object closes.
class Descriptor {
public:
    /// \param descriptor negative for no file
    explicit Descriptor(long descriptor = -1) : m_descriptor(static_cast<int>(descriptor)) {}
    Descriptor(Descriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    Descriptor& operator=(Descriptor other) noexcept {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~Descriptor() { close(); }

    int get() const { return m_descriptor; }
    bool isOpen() const { return m_descriptor >= 0; }
    /// \return false, with errno set, if a write to it has failed.
    bool close() { return !isOpen() || ::close(std::exchange(m_descriptor, -1)) == 0; }

private:
    int m_descriptor;
};

/// A pipe. Reading from it does not wait; writing does.
struct Pipe {
    /// \throws std::system_error
    Pipe();

    Descriptor reader;
    Descriptor writer;
};

/// Writes all of \p text to \p descriptor.
/// \return false, with errno set, if that fails.
bool writeAll(int descriptor, std::string_view text);

/// Writes all of \p text to a socket. Also fails if the descriptor is no longer a socket, or if the other end is
/// closed.
bool sendAll(int socket, std::string_view text);

/// Appends the data that \p descriptor has now to \p text, up to a limit, so that a fast writer cannot block this
/// process. \return false at the end of the file and after an error; true if more may come.
bool readAvailable(int descriptor, std::string& text);

/// Does the same for data that must not be lost.
/// \throws std::system_error with \p what if \p descriptor cannot be read.
bool requireAvailable(int descriptor, std::string& text, const char* what);

}  // namespace vexa::runner
