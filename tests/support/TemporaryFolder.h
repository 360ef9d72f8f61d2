#pragma once

#include <stdlib.h>  // mkdtemp

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace vexa::tests {

/// A new, empty folder. The destructor removes it with its contents.
class TemporaryFolder {
public:
    TemporaryFolder() : m_path((std::filesystem::temp_directory_path() / "vexa-test-XXXXXX").string()) {
        if (mkdtemp(m_path.data()) == nullptr) throw std::runtime_error("no temporary folder");
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    const std::string& path() const { return m_path; }
    std::string path(const std::string& name) const { return m_path + '/' + name; }

    /// Creates a file.
    /// \return the file's path.
    std::string write(const std::string& name, std::string_view bytes) const {
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }

    /// Returns the number of entries.
    long count() const {
        const std::filesystem::directory_iterator entries(m_path);
        return std::distance(begin(entries), end(entries));
    }

private:
    std::string m_path;
};

}  // namespace vexa::tests
