// The text file reader against the plainest way to split a text into lines.

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <vector>

#include "Fuzz.h"
#include "tests/textfile/ByteLoopSplit.h"
#include "vexautilutil/AsciiFile.h"

namespace vexa::fuzz {
namespace {

// A file in memory, with a path by which this process can open it.
class MemoryFile {
public:
    explicit MemoryFile(const std::string& content) : m_descriptor(memfd_create("text", 0)) {
        require(m_descriptor >= 0, "there is a file in memory");
        const auto written = write(m_descriptor, content.data(), content.size());
        require(written == static_cast<ssize_t>(content.size()), "the file takes the text");
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { close(m_descriptor); }

    std::string path() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }

private:
    int m_descriptor;
};

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    std::string text = textOf(data, size);
    const MemoryFile file(text);
    vexa::vexautilutil::AsciiFile reader;
    require(reader.open(file.path()), "a text is opened");

    std::vector<std::uint64_t> offsets;
    splitByteByByte(text.data(), offsets);
    require(reader.numLinesInFile() == offsets.size(), "the lines are counted");
    for (std::uint64_t line = 0; line < offsets.size(); ++line) {
        const char* const expected = text.data() + offsets[line];
        require(std::strcmp(reader.readRawLineAtOffset(line), expected) == 0, "a line is served by its index");
        require(reader.readLine() == expected, "the lines are served in order");
    }
    require(reader.isEOF(), "after the last line is the end");
    return 0;
}
