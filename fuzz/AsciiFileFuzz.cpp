// Compares AsciiFile with a model that splits a text byte by byte. The bytes of the text also choose the operations
// that both carry out.

#include <cstring>
#include <vector>

#include "MemoryFile.h"
#include "vexautilutil/AsciiFile.h"

namespace vexa::fuzz {
namespace {

using vexautilutil::AsciiFile;

constexpr std::size_t kMostSteps = 64;

bool isWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// A text file, and a line of it that is the current one.
class Model {
public:
    explicit Model(const std::string& text) {
        bool isLineStart = true;
        bool isCut = false;  // the rest of the line follows a carriage return
        for (const char c : text) {
            if (c == '\0') return;
            if (isLineStart) lines.emplace_back();
            isCut = !isLineStart && isCut;
            isLineStart = c == '\n';
            isCut = isCut || c == '\r';
            if (!isLineStart && !isCut) lines.back() += c;
        }
    }

    // Returns the first character of the current line that is not white space; NUL if there is none.
    char firstPrinting() const {
        for (const char c : lines[current]) {
            if (!isWhiteSpace(c)) return c;
        }
        return '\0';
    }

    std::vector<std::string> lines;
    std::size_t current = 0;
};

void requireSameLines(AsciiFile& file, Model& model) {
    require(file.numLinesInFile() == model.lines.size(), "the lines are counted");
    for (; model.current < model.lines.size(); ++model.current) {
        require(!file.isEOF(), "a line is left");
        const std::string& line = model.lines[model.current];
        require(file.readLineAtOffset(model.current) == line, "a line is served by its index");
        require(file.readLine() == line, "the lines are served in order");
    }
}

void requireSamePlace(const AsciiFile& file, const Model& model) {
    require(file.currentLineNumber() == model.current, "the current line is that of the model");
    require(file.isEOF() == (model.current == model.lines.size()), "the end is that of the model");
}

void step(unsigned char choice, AsciiFile& file, Model& model) {
    if (choice % 5 == 0 || model.current == model.lines.size()) {
        file.rewind();
        model.current = 0;
        return;
    }
    const char first = model.firstPrinting();
    const char comment = choice % 2 == 0 ? '#' : first;
    switch (choice % 5) {
        case 1: file.advanceToNextLine(); break;
        case 2: require(file.readLine() == model.lines[model.current], "a copy of the current line"); break;
        case 3: require(file.readRawLine() == model.lines[model.current], "the text of the current line"); break;
        default:
            require(file.isEmptyLine(model.current) == (first == '\0'), "a line of white space is empty");
            require(file.isCommentLine(model.current, comment) == (first == comment), "a comment starts with its sign");
            return;
    }
    ++model.current;
}

void trySteps(const std::string& choices, AsciiFile& file, Model& model) {
    for (std::size_t i = 0; i < choices.size() && i < kMostSteps; ++i) {
        step(static_cast<unsigned char>(choices[i]), file, model);
        requireSamePlace(file, model);
    }
}

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    const std::string text = textOf(data, size);
    const MemoryFile disk(text);
    AsciiFile file;
    require(file.open(disk.path()) && file.isOpen(), "a text is opened");
    Model model(text);
    requireSameLines(file, model);
    requireSamePlace(file, model);
    if (!model.lines.empty()) trySteps(text, file, model);
    file.close();
    require(!file.isOpen() && file.fileName() == disk.path(), "a closed file keeps its name");
    return 0;
}
