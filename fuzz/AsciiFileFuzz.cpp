// Compares AsciiFile with a simple loop that splits a text into lines.

#include <cstring>
#include <vector>

#include "MemoryFile.h"
#include "tests/library/textfile/ByteLoopSplit.h"
#include "vexautilutil/AsciiFile.h"

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
