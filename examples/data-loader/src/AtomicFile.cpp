#include "AtomicFile.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "Errors.h"
#include "vexautilutil/FileSystem.h"

namespace dataloader {
namespace {

namespace fs = vexa::filesystem;

[[noreturn]] void fail(const std::string& fileName, const std::string& reason) {
    throw LoaderError("Cannot write " + fileName + ": " + reason);
}

[[noreturn]] void failForLastError(const std::string& fileName) {
    fail(fileName, std::generic_category().message(errno));
}

}  // namespace

AtomicFile::AtomicFile(std::string fileName)
    : m_fileName(std::move(fileName)), m_temporary(m_fileName + '.' + std::to_string(getpid()) + ".part") {
    // Refuses a device, because renaming would replace it by a file.
    const auto status = fs::fileStatus(m_fileName, true);
    if (exists(status) && !is_regular_file(status)) fail(m_fileName, "it is no regular file");
    m_stream = fs::fileOpen(m_temporary, "wb");
    if (m_stream == nullptr) failForLastError(m_fileName);
}

AtomicFile::~AtomicFile() {
    if (m_stream != nullptr) std::fclose(m_stream);
    if (!m_temporary.empty()) fs::fileRemove(m_temporary);
}

void AtomicFile::write(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), m_stream) != text.size()) failForLastError(m_fileName);
}

void AtomicFile::commit() {
    if (std::fclose(std::exchange(m_stream, nullptr)) != 0) failForLastError(m_fileName);
    if (fs::fileRename(m_temporary, m_fileName) != 0) failForLastError(m_fileName);
    m_temporary.clear();
}

}  // namespace dataloader
