#include "WholeFile.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

namespace vexa::runner {
namespace {

struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
};

std::string readToEnd(FILE* file) {
    std::string text;
    std::array<char, 65536> chunk{};
    std::size_t count = 0;
    while ((count = std::fread(chunk.data(), 1, chunk.size(), file)) > 0) text.append(chunk.data(), count);
    if (std::ferror(file)) throw std::system_error(errno, std::generic_category());
    return text;
}

}  // namespace

std::string readWholeFile(const std::string& path) {
    const std::unique_ptr<FILE, FileCloser> file(std::fopen(path.c_str(), "rbe"));
    if (!file) throw std::system_error(errno, std::generic_category());
    return readToEnd(file.get());
}

std::string readStandardInput() { return readToEnd(stdin); }

}  // namespace vexa::runner
