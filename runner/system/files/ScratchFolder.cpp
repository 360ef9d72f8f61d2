#include "system/files/ScratchFolder.h"

#include <stdexcept>
#include <string>
#include <system_error>

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kMostBytes = std::uintmax_t{100} << 20;
constexpr std::uintmax_t kBytesOfAnEntry = 1024;  // what an entry counts besides its content, as many are a burden, too

}  // namespace

ScratchFolder::ScratchFolder() {
    fs::create_directory(temporary());
    fs::create_directory(copy());
    fill(fs::current_path(), copy());
}

void ScratchFolder::fill(const fs::path& from, const fs::path& to) {
    for (const fs::directory_entry& entry : fs::directory_iterator(from)) {
        const fs::path name = entry.path().filename();
        // The copy may lie within the folder that is copied.
        if (name.native().front() == '.' || entry.path() == path()) continue;
        m_bytes += kBytesOfAnEntry;
        if (entry.is_symlink()) {
            fs::copy_symlink(entry.path(), to / name);
        } else if (entry.is_directory()) {
            fs::create_directory(to / name);
            fill(entry.path(), to / name);
        } else if (entry.is_regular_file()) {
            m_bytes += entry.file_size();
            if (m_bytes <= kMostBytes) fs::copy_file(entry.path(), to / name);
        }
        if (m_bytes > kMostBytes) {
            throw std::length_error("more than " + std::to_string(kMostBytes >> 20) + " MiB are in " +
                                    fs::current_path().string());
        }
    }
}

CurrentFolder::CurrentFolder(const fs::path& path) : m_before(fs::current_path()) { fs::current_path(path); }

CurrentFolder::~CurrentFolder() {
    std::error_code ignored;
    fs::current_path(m_before, ignored);
}

}  // namespace vexa::runner
