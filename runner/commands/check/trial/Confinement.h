#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>

#include "system/processes/SharedMemory.h"

namespace vexa::runner {

/// Lets a process, and the processes that it starts, change files only below a folder.
///
///     const Confinement confinement(scratch, scratch / "tmp");
///     if (fork() == 0) {
///         confinement.enter();   // for good
///         ...                    // open("/home/me/file", O_WRONLY) fails with EACCES
///     }
///
/// Below the folder everything is allowed. Elsewhere, files and folders cannot be created, written, truncated, renamed,
/// linked or removed. They can be read, and programs can be started. Open files stay open. Devices that keep nothing,
/// such as /dev/null, may be written.
///
/// The class uses Landlock if the kernel can control truncation with it (Linux 6.2 or later). Otherwise, if the system
/// allows it, the process gets its own view of the file system, in which everything outside the folder is read-only.
///
/// Not covered: with Landlock, owners, permissions, times and attributes of files; signals to other processes; sockets;
/// and requests to running programs.
class Confinement {
public:
    /// \param folder    an absolute path.
    /// \param temporary a folder below it; TMPDIR is set to it.
    /// \throws std::bad_alloc
    Confinement(std::filesystem::path folder, std::filesystem::path temporary);

    /// Confines this process, which must have one thread. Its current folder stays the same.
    /// \throws std::system_error if the system allows neither way. The process must then not continue.
    void enter() const;

    /// Returns how many calls of C library functions that change files were refused in all confined processes. Direct
    /// system calls, calls inside the C library, and calls of other programs are refused, too, but not counted.
    std::size_t refusals() const { return m_refusals->value; }

    /// Counts a call that failed with \p error, if this process is confined and the confinement may be the reason. The
    /// functions of CountedFileCalls.cpp call it.
    static void noteFailure(int error) noexcept;

private:
    struct Counter {
        std::atomic<std::uint64_t> value{0};
        static_assert(decltype(value)::is_always_lock_free);
    };

    static Counter* enteredCounter;  // of the confinement that this process entered

    std::filesystem::path m_folder;
    std::filesystem::path m_temporary;
    SharedMemory<Counter> m_refusals;
};

/// The two ways of Confinement::enter(), for tests.
/// \throws std::system_error
void confineByLandlock(const std::filesystem::path& folder);
void confineByMounts(const std::filesystem::path& folder);

}  // namespace vexa::runner
