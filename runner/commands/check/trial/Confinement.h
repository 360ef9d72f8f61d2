#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>

#include "system/processes/SharedMemory.h"

namespace vexa::runner {

/// A folder below which alone those processes may change files that entered it, and the processes that they start.
///
///     const Confinement confinement(scratch, scratch / "tmp");
///     if (fork() == 0) {
///         confinement.enter();   // for good
///         ...                    // open("/home/me/file", O_WRONLY) fails with EACCES
///     }
///
/// Below the folder everything is allowed. Elsewhere files and folders cannot be made, written, cut, renamed, linked or
/// removed; they can be read, and programs can be started. What is open stays open. Devices that keep nothing, such as
/// /dev/null, may be written.
///
/// Landlock does this where the kernel has it with the right to cut files (from Linux 6.2 on). Elsewhere the process
/// gets a view of the file system of its own, in which all but the folder is read-only, where the system allows that.
///
/// Not covered: owners, permissions, times and attributes of files, where Landlock does it; signals to other processes;
/// sockets; and what a program that runs already is asked to do.
class Confinement {
public:
    /// \param folder    an absolute path.
    /// \param temporary a folder below it, which TMPDIR names within.
    /// \throws std::bad_alloc
    Confinement(std::filesystem::path folder, std::filesystem::path temporary);

    /// Confines this process, which must have one thread. Its current folder stays the same.
    /// \throws std::system_error when neither way is open; the process is not to go on then.
    void enter() const;

    /// How many calls of the C library that change files were refused in all processes that entered. System calls that
    /// are made without the C library, or by it for its own ends, and those of other programs are refused, too, but not
    /// counted.
    std::size_t refusals() const { return m_refusals->value; }

    /// Counts a call that failed with \p error, if this process is confined and that is why. Called by the functions of
    /// CountedFileCalls.cpp.
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
