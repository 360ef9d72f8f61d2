#include "WholeFile.h"

#include <array>
#include <cstdio>
#include <memory>

#include "LastError.h"

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
    if (std::ferror(file)) throwLastError();
    return text;
}

}  // namespace

std::string readWholeFile(const std::string& path) {
    const std::unique_ptr<FILE, FileCloser> file(std::fopen(path.c_str(), "rbe"));
    if (!file) throwLastError();
    return readToEnd(file.get());
}

std::string readStandardInput() { return readToEnd(stdin); }

}  // namespace vexa::runner
