#pragma once

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include "system/NonCopyable.h"

namespace vexa::runner {

/// A new folder among the temporary files. The destructor removes it with all that is in it.
class TemporaryFolder : NonCopyable {
public:
    /// \param name the start of its name
    /// \throws std::filesystem::filesystem_error
    explicit TemporaryFolder(const std::string& name) {
        std::string path = (std::filesystem::temp_directory_path() / (name + "-XXXXXX")).string();
        if (mkdtemp(path.data()) == nullptr) {
            throw std::filesystem::filesystem_error("cannot make a folder", path,
                                                    std::error_code(errno, std::generic_category()));
        }
        m_path = path;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

}  // namespace vexa::runner
