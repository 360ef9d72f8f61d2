#include "Output.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "ProbeError.h"
#include "vexautilutil/FileSystem.h"

namespace probestats {
namespace {

namespace fs = vexa::filesystem;

[[noreturn]] void fail(const std::string& target, const std::error_code& reason) {
    throw ProbeError("Cannot write " + target + ": " + reason.message());
}

std::error_code lastError() { return {errno, std::generic_category()}; }

// Returns the error, if there was one.
std::error_code writeWhole(const std::string& fileName, const std::string& text) {
    std::FILE* const out = fs::fileOpen(fileName, "wb");
    if (out == nullptr) return lastError();
    std::error_code failure;
    if (std::fwrite(text.data(), 1, text.size(), out) != text.size()) failure = lastError();
    if (std::fclose(out) != 0 && !failure) failure = lastError();
    return failure;
}

}  // namespace

void writeToScreen(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0) return;
    const std::error_code failure = lastError();
    std::clearerr(stdout);
    fail("the standard output", failure);
}

void writeToFile(const std::string& fileName, const std::string& text) {
    // Refuses a device, because renaming would replace it by a file.
    const auto status = fs::fileStatus(fileName, true);
    if (exists(status) && !is_regular_file(status)) {
        throw ProbeError("Cannot write " + fileName + ": it is no regular file");
    }
    const std::string temporary = fileName + '.' + std::to_string(getpid()) + ".part";
    std::error_code failure = writeWhole(temporary, text);
    if (!failure && fs::fileRename(temporary, fileName) != 0) failure = lastError();
    if (!failure) return;
    fs::fileRemove(temporary);
    fail(fileName, failure);
}

}  // namespace probestats
