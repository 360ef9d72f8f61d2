#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "vexautilutil/Export.h"

namespace vexa::vexautilutil {

/// Reads a whole text file into memory and returns it line by line.
///
///     AsciiFile file;
///     if (!file.open("wake.txt")) return fail();
///     while (!file.isEOF()) {
///         const std::string line = file.readLine();
///         if (!take(line)) file.error("Three numbers are expected");   // "... on line 12 in file: wake.txt"
///     }
///
/// How lines end:
/// - A line feed ends a line; no other character does. The last line may lack its line feed. A line feed at the end of
///   the file does not start another line.
/// - open() replaces every carriage return by a NUL, and a line's text ends at its first NUL. So CR LF ends a line,
///   too. A file whose lines end with CR alone is a single line; its text ends at the first CR.
/// - A NUL in the file ends the text. open() ignores the rest of the file.
///
/// Line indices start at 0. After readLine() has returned a line, currentLineNumber() is that line's number counted
/// from 1, which is the number that error(message) shows.
///
/// Use one object per file.
/// \warning After a second open(), the first lines still have the offsets of the first file, and the current line is
///          unchanged.
///
/// Errors:    open() returns false. The operations that read lines check neither the index nor that a file is open:
///            keep the index below numLinesInFile().
/// Ownership: the object owns the texts that it returns as pointers. They are valid until the next open() or close(),
///            or until the object is destroyed.
/// Threads:   const operations may run at the same time. Any other operation needs the object to itself.
/// Cost:      open() reads the file once into one block of memory and scans that block once. The object holds the file
///            and 8 bytes per line. open() copies no line.
class VEXAUTILUTIL_API AsciiFile {
public:
    /// Creates an object without a file: isOpen() is false, fileName() is empty, numLinesInFile() is 0.
    AsciiFile();
    AsciiFile(const AsciiFile&) = delete;
    AsciiFile& operator=(const AsciiFile&) = delete;
    ~AsciiFile();

    /// Reads a file. On success it replaces the previous file.
    /// \param path a regular file. It becomes fileName(), even if open() fails.
    /// \return false if open() cannot open the file, get its size, allocate memory for it, or read all of it. `errno`
    ///         has the reason. open() never throws. After a failure the object holds:
    ///         - the text and lines of the previous file, if open() failed before it read: the file is missing, not
    ///           readable, a directory or a pipe, or there is no memory for its text;
    ///         - no file, if open() failed later: it could not read the whole text, or there is no memory for the
    ///           table of lines.
    /// \warning open() waits for the writer of a pipe, and then fails, because a pipe has no size.
    bool open(const std::string& path);
    /// Frees the text. Name, number of lines and current line are unchanged.
    void close();
    /// Returns true if the object holds a text.
    bool isOpen() const;

    /// Makes the first line the current line.
    void rewind();
    /// Makes the next line the current line. It does not stop at the end.
    void advanceToNextLine();
    /// Returns true if the current line is one past the last line.
    /// \warning If the current line is further past the end, it returns false.
    bool isEOF() const;
    /// Returns the index of the current line, which is the number of lines read so far.
    uint64_t currentLineNumber() const;
    /// Returns the number of lines that the last open() found.
    uint64_t numLinesInFile() const;
    /// Returns the \p path of the last open().
    const std::string& fileName() const;

    /// Returns the text of line \p index, not a copy. (The argument is an index, although the function's name says
    /// `Offset`.)
    const char* readRawLineAtOffset(uint64_t index) const;
    /// Returns a copy of the text of line \p index.
    std::string readLineAtOffset(uint64_t index) const;
    /// Returns the text of the current line, not a copy, and makes the next line the current line.
    const char* readRawLine();
    /// Returns a copy of the text of the current line, and makes the next line the current line. If there is no memory
    /// for the copy, it throws `std::bad_alloc` and the current line is unchanged.
    std::string readLine();

    /// Returns true if line \p index has only white space: blank, tab, vertical tab, form feed.
    bool isEmptyLine(uint64_t index) const;
    /// Returns true if \p commentChar is the first character of line \p index that is not white space. For a
    /// line with only white space it returns true only if \p commentChar is NUL.
    bool isCommentLine(uint64_t index, char commentChar) const;

    /// \name Errors in the file, shown to the user in the host's error dialog
    /// They also work if no file is open. They throw only if memory runs out, and then show no dialog.
    /// @{

    /// Shows: \p message, " on line ", \p lineNumber, " in file: ", fileName().
    void error(const std::string& message, std::size_t lineNumber) const;
    /// Calls error(message, currentLineNumber()). After readLine() this names the line that readLine() returned.
    void error(const std::string& message) const;
    /// Formats the message as `printf` does, and shows it as error(message) does.
    /// \param format has exactly one conversion: `%s`, with or without flags and sizes (`%-8s`, `%1$s`). Any other
    ///               format is shown unchanged. The format ends at its first NUL.
    /// \param value  replaces the conversion. The formatted message is cut after 4095 characters.
    void errorWithFormattedString(const std::string& format, const std::string& value) const;
    /// Does the same for an integer.
    /// \param format has exactly one integer conversion with the modifier `l`, such as `%ld`, `%5ld`, `%lx` or `%1$ld`.
    ///               Any other format is shown unchanged. The format ends at its first NUL.
    /// \param value  replaces the conversion. The formatted message is cut after 4095 characters.
    void errorWithFormattedInteger(const std::string& format, long value) const;
    /// @}

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace vexa::vexautilutil
