#pragma once

#include <cstdint>
#include <filesystem>

#include "system/NonCopyable.h"
#include "system/files/TemporaryFolder.h"

namespace vexa::runner {

/// A copy of the current folder, for commands that may write files anywhere in it. The destructor removes it.
///
/// Only files, folders and links are copied, without hidden ones.
class ScratchFolder : NonCopyable {
public:
    /// \throws std::filesystem::filesystem_error if the folder cannot be copied.
    /// \throws std::length_error if it is too large.
    ScratchFolder();

    /// The folder that has the copy and the folder for temporary files.
    const std::filesystem::path& path() const { return m_folder.path(); }
    /// The copy.
    std::filesystem::path copy() const { return path() / "copy"; }
    /// A folder for temporary files.
    std::filesystem::path temporary() const { return path() / "tmp"; }

private:
    void fill(const std::filesystem::path& from, const std::filesystem::path& to);

    TemporaryFolder m_folder{"vexa-standin-check"};
    std::uintmax_t m_bytes = 0;
};

/// Changes the current folder as long as this object lives.
class CurrentFolder : NonCopyable {
public:
    /// \throws std::filesystem::filesystem_error
    explicit CurrentFolder(const std::filesystem::path& path);
    ~CurrentFolder();

private:
    std::filesystem::path m_before;
};

}  // namespace vexa::runner
