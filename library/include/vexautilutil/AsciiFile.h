#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "vexautilutil/Export.h"

namespace vexa::vexautilutil {

/// A text file, read whole and served line by line.
///
///     AsciiFile file;
///     if (!file.open("wake.txt")) return fail();
///     while (!file.isEOF()) {
///         const std::string line = file.readLine();
///         if (!take(line)) file.error("Three numbers are expected");   // "... on line 12 in file: wake.txt"
///     }
///
/// Lines are split where they lie: none is copied when the file is opened.
/// - A line feed ends a line, and nothing else. The last line need not have one; behind it there is no further line.
/// - Every carriage return becomes a NUL, and a line's text ends at its first NUL. So lines may end with CR LF; but a
///   file whose lines end with CR alone is one line, of which the first piece is seen.
/// - A NUL in the file ends it: what follows is not looked at.
///
/// Lines are counted from 0 where an index is taken. The line number in an error message is the one given; right after
/// a line was read, currentLineNumber() is the number of that line counted from 1, as people do.
///
/// Use one object per file.
/// \warning After a second open() the first lines still have the offsets of the first file, and the current line stays
///          where it was.
///
/// Errors:    open() returns false. What reads lines checks neither the index nor that a file is open: keep the index
///            below numLinesInFile().
/// Ownership: texts returned as pointers lie in this object, until the next open(), close() or its end.
/// Threads:   const operations may run at the same time; the others not.
/// Cost:      open() reads once into one piece of memory, and passes over it once. In memory: the file, and 8 bytes a
///            line.
class VEXAUTILUTIL_API AsciiFile {
public:
    /// Holds no file: isOpen() is false, fileName() empty, and there are no lines.
    AsciiFile();
    AsciiFile(const AsciiFile&) = delete;
    AsciiFile& operator=(const AsciiFile&) = delete;
    ~AsciiFile();

    /// Reads a file. A file open before is replaced.
    /// \param path a regular file. It becomes fileName(), also on failure.
    /// \return false, with the reason in `errno`, when the file cannot be opened, sized, held in memory, or read whole.
    ///         Nothing is thrown. What is held after a failure depends on how far open() came:
    ///         - Before it reads, the text and lines of the previous file are kept: the file is missing or forbidden, a
    ///           directory or a pipe, or there is no memory for its text.
    ///         - After that, no file is held: reading fails or comes back short, or there is no memory for the table of
    ///           lines.
    /// \warning A pipe without a writer is waited for; one with a writer is refused, for it has no size.
    bool open(const std::string& path);
    /// Lets go of the text. The name, the number of lines and the current line stay.
    void close();
    /// Whether a text is held.
    bool isOpen() const;

    /// Makes the first line the current one.
    void rewind();
    /// Passes over the current line. There is no bound.
    void advanceToNextLine();
    /// Whether the current line is the one behind the last.
    /// \warning Further on it is false again.
    bool isEOF() const;
    /// The index of the current line, which is the number of lines read so far.
    uint64_t currentLineNumber() const;
    /// The number of lines that the last open() found.
    uint64_t numLinesInFile() const;
    /// The path that the last open() was given.
    const std::string& fileName() const;

    /// The text of line \p index, which is a line's index despite the operation's name. Not copied.
    const char* readRawLineAtOffset(uint64_t index) const;
    /// A copy of the text of line \p index.
    std::string readLineAtOffset(uint64_t index) const;
    /// The text of the current line, which then moves on. Not copied.
    const char* readRawLine();
    /// A copy of the text of the current line, which then moves on. When there is no memory for the copy, the current
    /// line stays.
    std::string readLine();

    /// Whether line \p index has nothing but white space: blank, tab, vertical tab, form feed.
    bool isEmptyLine(uint64_t index) const;
    /// Whether the first character of line \p index that is no white space is \p commentChar. An empty line is no
    /// comment, unless \p commentChar is NUL.
    bool isCommentLine(uint64_t index, char commentChar) const;

    /// \name Errors in the file, shown to the user in the host's error dialog
    /// They are reported for a closed file, too. Only lack of memory throws; no dialog is shown then.
    /// @{

    /// Shows: \p message, " on line ", \p lineNumber as given, " in file: ", fileName().
    void error(const std::string& message, std::size_t lineNumber) const;
    /// The same, for currentLineNumber(): right after a line was read, that line counted from 1.
    void error(const std::string& message) const;
    /// Formats the message as `printf` does, and shows it as error(message) does.
    /// \param format has exactly one conversion, `%s` or one like it (`%-8s`, `%1$s`); else it is shown as it stands.
    /// It
    ///               ends at its first NUL.
    /// \param value  a result of more than 4095 characters is cut there.
    void errorWithFormattedString(const std::string& format, const std::string& value) const;
    /// The same, for an integer.
    /// \param format has exactly one conversion, `%ld` or one like it (`%5ld`, `%lx`, `%1$ld`); else it is shown as it
    ///               stands. It ends at its first NUL.
    void errorWithFormattedInteger(const std::string& format, long value) const;
    /// @}

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace vexa::vexautilutil
