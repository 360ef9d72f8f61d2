// Runs a fuzz target on every file of the given folders, so that its corpus is also a test without the fuzzer.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "Fuzz.h"

namespace {

std::vector<std::filesystem::path> filesIn(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

void tryFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
    const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());  // of the exact size, for the address sanitizer
    LLVMFuzzerTestOneInput(input.data(), input.size());
}

}  // namespace

int main(int argc, char** argv) {
    std::size_t tried = 0;
    for (int i = 1; i < argc; ++i) {
        for (const std::filesystem::path& file : filesIn(argv[i])) {
            std::printf("%s\n", file.c_str());
            std::fflush(stdout);  // if the program crashes, the last line names the file
            tryFile(file);
            ++tried;
        }
    }
    std::printf("%zu inputs tried\n", tried);
    return tried == 0 ? EXIT_FAILURE : EXIT_SUCCESS;
}
