#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>

#include "system/files/InputLines.h"

namespace vexa::runner {

struct ResultLine;

/// A results file cannot be used. The message is one line, which starts with the file.
class ResultsError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The results of one run of a macro file.
struct MacroResult {
    std::string macroFile;          ///< empty if the file does not say it
    std::optional<int> exitStatus;  ///< nothing if the end line is missing, because the runner was killed
    std::string error;              ///< how an add-on ended its process, or that it did not return
    std::size_t commands = 0;
    double seconds = 0;    ///< the time of the commands
    std::string failures;  ///< the errors of the first failed commands, one on each line
    std::string lines;     ///< its lines in the file, each with its line feed
};

/// Reads a results file macro by macro. Memory holds the results of one macro file.
///
/// A runner that is killed may leave a last line without its second half, and commands without an end line. The reader
/// returns these as a last result without an exit status. A last line that lacks only its line feed is complete.
class ResultsReader {
public:
    /// \param lines must live longer.
    /// \param name  the file in messages
    ResultsReader(InputLines& lines, std::string name) : m_lines(lines), m_name(std::move(name)) {}

    /// Returns the next result; nothing at the end.
    /// \throws ResultsError "FILE:LINE: this is not a line of 'run --json'", or "FILE: cannot be read: REASON".
    std::optional<MacroResult> next();

private:
    bool readLine(std::string& line);
    [[noreturn]] void refuseLine() const;

    InputLines& m_lines;
    std::string m_name;
    std::size_t m_number = 0;  // of the last line that was read
};

}  // namespace vexa::runner
