#include "vexautilutil/AsciiFile.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <new>
#include <optional>
#include <vector>

#include "textfile/LineSplitter.h"
#include "vexautilutil/FileSystem.h"

namespace vexa::vexautilutil {
namespace {

// Keeps `errno`, which may hold the reason of an earlier failure.
struct StreamCloser {
    void operator()(FILE* stream) const {
        const int reason = errno;
        std::fclose(stream);
        errno = reason;
    }
};
using Stream = std::unique_ptr<FILE, StreamCloser>;

// A folder can be opened like a file, and has a size that depends on the file system.
bool isFolder(FILE* stream) {
    struct stat status {};
    static_cast<void>(fstat(fileno(stream), &status));  // cannot fail: the descriptor is open
    return S_ISDIR(status.st_mode);
}

std::optional<std::size_t> sizeOf(FILE* stream) {
    if (isFolder(stream)) {
        errno = EISDIR;
        return std::nullopt;
    }
    if (fseeko(stream, 0, SEEK_END) == -1) return std::nullopt;
    const off_t size = ftello(stream);
    if (size == -1 || fseeko(stream, 0, SEEK_SET) == -1) return std::nullopt;
    return static_cast<std::size_t>(size);
}

// White space as in the default locale, in every locale of the process.
bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

const char* skipSpace(const char* text) {
    while (isSpace(*text)) ++text;
    return text;
}

}  // namespace

struct AsciiFile::Impl {
    // Reads the text of a file of `size` bytes. Returns false if it cannot read all of it.
    bool read(FILE* stream, std::size_t size) {
        buffer.reset(new char[size + 1]);
        if (std::fread(buffer.get(), 1, size, stream) != size) {
            if (std::ferror(stream) == 0) errno = EIO;  // the file became shorter since sizeOf()
            buffer.reset();
            return false;
        }
        buffer[size] = '\0';
        return true;
    }

    // Returns false if there is no memory for all lines.
    bool split(std::size_t size) {
        const std::size_t linesBefore = lineOffsets.size();
        bool complete = true;
        try {
            splitLines(buffer.get(), size, lineOffsets);
        } catch (const std::bad_alloc&) {
            complete = false;
            buffer.reset();
            errno = ENOMEM;
        }
        // The line for which memory ran out has no entry, but it counts.
        lineCount = lineOffsets.size() - linesBefore + (complete ? 0 : 1);
        return complete;
    }

    std::unique_ptr<char[]> buffer;  // the text, with a NUL at the end of each line; null if no file is held
    std::string fileName;
    uint64_t currentLine = 0;
    uint64_t lineCount = 0;
    std::vector<uint64_t> lineOffsets;  // offsets in the buffer; those of previous files come first
};

AsciiFile::AsciiFile() : m_impl(std::make_unique<Impl>()) {}

AsciiFile::~AsciiFile() = default;

bool AsciiFile::open(const std::string& path) {
    try {
        m_impl->fileName = path;
        const Stream stream(filesystem::fileOpen(path, "rb"));
        if (!stream) return false;
        const std::optional<std::size_t> size = sizeOf(stream.get());
        return size && m_impl->read(stream.get(), *size) && m_impl->split(*size);
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return false;
    }
}

void AsciiFile::close() { m_impl->buffer.reset(); }

bool AsciiFile::isOpen() const { return m_impl->buffer != nullptr; }

void AsciiFile::rewind() { m_impl->currentLine = 0; }

void AsciiFile::advanceToNextLine() { ++m_impl->currentLine; }

bool AsciiFile::isEOF() const { return m_impl->currentLine == m_impl->lineCount; }

uint64_t AsciiFile::currentLineNumber() const { return m_impl->currentLine; }

uint64_t AsciiFile::numLinesInFile() const { return m_impl->lineCount; }

const std::string& AsciiFile::fileName() const { return m_impl->fileName; }

const char* AsciiFile::readRawLineAtOffset(uint64_t index) const {
    return m_impl->buffer.get() + m_impl->lineOffsets[index];
}

std::string AsciiFile::readLineAtOffset(uint64_t index) const { return readRawLineAtOffset(index); }

const char* AsciiFile::readRawLine() { return readRawLineAtOffset(m_impl->currentLine++); }

std::string AsciiFile::readLine() {
    std::string line = readLineAtOffset(m_impl->currentLine);
    ++m_impl->currentLine;  // after the copy, so that it does not move if memory runs out
    return line;
}

bool AsciiFile::isEmptyLine(uint64_t index) const { return *skipSpace(readRawLineAtOffset(index)) == '\0'; }

bool AsciiFile::isCommentLine(uint64_t index, char commentChar) const {
    return *skipSpace(readRawLineAtOffset(index)) == commentChar;
}

}  // namespace vexa::vexautilutil
