#pragma once

#include <cstdint>
#include <string>

namespace vexa::runner {

/// Tells versions of a file apart. The stamp of a file that is not there is empty.
struct FileStamp {
    bool isThere = false;
    std::uint64_t device = 0;
    std::uint64_t number = 0;  // of the inode
    std::int64_t size = 0;
    std::int64_t written = 0;  // nanoseconds
    std::int64_t changed = 0;  // nanoseconds; also of permissions and names

    bool operator==(const FileStamp& other) const;
    bool operator!=(const FileStamp& other) const { return !(*this == other); }
};

FileStamp stampOf(const std::string& path);

/// Returns true if some process has opened the file for writing. Returns false if the system cannot say: then the file
/// belongs to another user, or its file system has no leases.
bool isBeingWritten(const std::string& path);

}  // namespace vexa::runner
