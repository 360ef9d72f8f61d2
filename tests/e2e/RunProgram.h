#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vexa::e2e {

/// How to run a program.
struct Program {
    std::vector<std::string> arguments;  ///< the program's path first
    std::filesystem::path folder;        ///< where it runs
    std::string input;                   ///< what it reads from its standard input
    bool asOneOutput = false;            ///< both outputs go to one place, as in a terminal: ProgramResult::out
};

/// \p program as it is started by one that ignores the end of its children. It is ended when it takes five minutes.
Program withoutChildSignals(Program program);

/// What came of a program that has ended.
struct ProgramResult {
    int status = 0;  ///< its exit status; the negative signal number if one ended it
    std::string out;
    std::string err;
    double seconds = 0;  ///< of the processors, which other programs do not add to
    long peakKiB = 0;    ///< the most memory that it had; what this program had when it started the other is the least
};

/// Runs \p program to its end.
/// \throws std::system_error when it cannot be started.
ProgramResult runProgram(const Program& program);

}  // namespace vexa::e2e
