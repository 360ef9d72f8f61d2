#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "system/NonCopyable.h"

namespace vexa::runner {

/// The end of a file, mapped into memory. A text that is appended to it is in the file at once, without a system call,
/// and stays there if the process is killed.
///
///     MappedTail tail(file);
///     tail.append("started\n");
///     tail.cut();                  // the file has exactly the text
///
/// Until cut(), up to kMost bytes that are not text follow the text, and the first of them is zero. A text becomes part
/// of the file by its first byte, which is copied last. So a killed process loses at most the text that it appends at
/// that moment, of which the first part may be there. If the process ends without cut(), another one must call
/// cutAfterText().
///
/// The object writes zero bytes before it maps them, so a full disk is an error and no signal. But SIGBUS ends the
/// process if another process shortens the file.
///
/// Threads: one at a time. A forked process must not use it.
class MappedTail : NonCopyable {
public:
    static constexpr std::size_t kMost = std::size_t{1} << 19;

    /// \param file an empty file, open for reading and writing. It must outlive the object.
    explicit MappedTail(int file);
    ~MappedTail() { unmap(); }

    /// Appends \p text, which has no zero bytes.
    /// \return how many bytes were appended. If they are fewer than the text has, the file system provides no more
    ///         memory. The object has then called cut(), and the next write to the file continues the text.
    std::size_t append(std::string_view text);

    /// Removes what follows the text. Appends nothing more.
    /// \return false, with errno set, if that fails. Nothing must be written to the file then.
    bool cut();

private:
    bool advance();
    bool map(off_t start);
    void unmap();
    bool isOurs() const;
    std::size_t length() const { return m_start + static_cast<std::size_t>(m_at - m_map); }

    int m_file;
    dev_t m_device = 0;
    ino_t m_inode = 0;
    bool m_isCut = false;
    int m_problem = 0;        // of the cut, as in errno
    std::size_t m_start = 0;  // the offset of the map in the file
    char* m_map = nullptr;
    char* m_at = nullptr;   // the end of the text
    char* m_end = nullptr;  // the end of the map
};

/// Returns the length of the text in \p content, which is a file or its end. Its writer may have been killed before it
/// called cut(). Zero bytes before the last MappedTail::kMost bytes count as text, because no MappedTail leaves them.
std::size_t textLengthOf(std::string_view content);

/// Claims \p file for this process, until the process ends or closes the file. A forked process has no claim.
/// \return false if another process has claimed it. A file system without locks has no claims.
bool claim(int file);

/// Removes what follows the text in a file whose writer was killed. Does nothing if the file cannot be opened, or if
/// another process has claimed it.
void cutAfterText(const std::string& path);

}  // namespace vexa::runner
