#pragma once

#include <cstdint>
#include <filesystem>
#include <utility>

#include "system/NonCopyable.h"

namespace vexa::runner {

/// A copy of the current folder, for commands that may write files anywhere in it. The destructor removes it.
///
/// Copies files, folders and links, except hidden ones.
class ScratchFolder : NonCopyable {
public:
    /// \throws std::filesystem::filesystem_error if the folder cannot be copied.
    /// \throws std::length_error if it is too large.
    ScratchFolder();
    ~ScratchFolder();

    /// Returns the folder that contains the copy and the folder for temporary files.
    const std::filesystem::path& path() const { return m_path; }
    /// Returns the path of the copy.
    std::filesystem::path copy() const { return m_path / "copy"; }
    /// Returns the folder for temporary files.
    std::filesystem::path temporary() const { return m_path / "tmp"; }

private:
    explicit ScratchFolder(std::filesystem::path path) : m_path(std::move(path)) {}
    void fill(const std::filesystem::path& from, const std::filesystem::path& to);

    std::filesystem::path m_path;
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
