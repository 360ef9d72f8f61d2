// Runs a fuzz target on every file of a folder, so that its corpus is also a test without the fuzzer.
//
// Usage: fuzz_replay_TARGET [--changes N] FOLDER
//
//   --changes N   runs the target on N random changes of the files instead, the same ones each time

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

#include "Fuzz.h"

namespace {

using Input = std::vector<std::uint8_t>;

std::vector<std::filesystem::path> filesIn(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

Input contentOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
    return {bytes.begin(), bytes.end()};
}

void tryInput(const Input& input) {
    const Input exact(input.begin(), input.end());  // without spare memory, for the address sanitizer
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

std::size_t tryFiles(const std::vector<std::filesystem::path>& files) {
    for (const std::filesystem::path& file : files) {
        std::printf("%s\n", file.c_str());
        std::fflush(stdout);  // if the program crashes, the last line names the file
        tryInput(contentOf(file));
    }
    return files.size();
}

// Changes inputs at random. The C++ standard fixes the numbers of the engine, so each run has the same ones.
class Changer {
public:
    explicit Changer(std::vector<Input> corpus) : m_corpus(std::move(corpus)) {}

    Input next() {
        Input input = anyOf(m_corpus);
        for (std::size_t changes = 1 + below(4); changes != 0; --changes) change(input);
        input.resize(std::min(input.size(), kMostBytes));
        return input;
    }

private:
    static constexpr std::size_t kMostBytes = 512;

    void change(Input& input) {
        const std::size_t begin = below(input.size() + 1);
        const std::size_t end = begin + below(std::min<std::size_t>(input.size() - begin, 8) + 1);
        const auto at = [&](std::size_t index) { return input.begin() + static_cast<std::ptrdiff_t>(index); };
        switch (below(4)) {
            case 0: input.erase(at(begin), at(end)); break;
            case 1: input.insert(at(begin), 1 + below(3), anyByte(input)); break;
            case 2: std::fill(at(begin), at(end), anyByte(input)); break;
            default: insertPart(input, begin, anyOf(m_corpus));
        }
    }

    void insertPart(Input& input, std::size_t where, const Input& other) {
        const std::size_t begin = below(other.size() + 1);
        const std::size_t size = below(other.size() - begin + 1);
        const auto first = other.begin() + static_cast<std::ptrdiff_t>(begin);
        input.insert(input.begin() + static_cast<std::ptrdiff_t>(where), first,
                     first + static_cast<std::ptrdiff_t>(size));
    }

    // Bytes of the input are likelier to matter than others.
    std::uint8_t anyByte(const Input& input) {
        const bool isKnown = !input.empty() && below(2) == 0;
        return isKnown ? anyOf(input) : static_cast<std::uint8_t>(below(256));
    }

    template <class List>
    const typename List::value_type& anyOf(const List& list) {
        return list[below(list.size())];
    }

    std::size_t below(std::size_t limit) { return m_random() % limit; }

    std::vector<Input> m_corpus;
    std::mt19937_64 m_random;
};

std::size_t tryChanges(const std::vector<std::filesystem::path>& files, std::size_t count) {
    std::vector<Input> corpus;
    std::transform(files.begin(), files.end(), std::back_inserter(corpus), contentOf);
    if (corpus.empty()) return 0;
    Changer changer(std::move(corpus));
    for (std::size_t i = 0; i < count; ++i) tryInput(changer.next());
    return count;
}

}  // namespace

int main(int argc, char** argv) {
    const bool hasChanges = argc == 4 && std::strcmp(argv[1], "--changes") == 0;
    if (argc != 2 && !hasChanges) return EXIT_FAILURE;
    const auto files = filesIn(argv[argc - 1]);
    const std::size_t tried = hasChanges ? tryChanges(files, std::strtoul(argv[2], nullptr, 10)) : tryFiles(files);
    std::printf("%zu inputs tried\n", tried);
    return tried == 0 ? EXIT_FAILURE : EXIT_SUCCESS;
}
