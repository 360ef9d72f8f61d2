#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "RunProgram.h"

namespace vexa::e2e {

/// A program that runs in a terminal of its own.
class PtyProgram {
public:
    /// Starts \p program in a window of \p columns columns.
    /// \param environment `NAME=VALUE` each, set for the program over what it inherits
    PtyProgram(const Program& program, unsigned short columns, const std::vector<std::string>& environment = {});
    PtyProgram(const PtyProgram&) = delete;
    PtyProgram& operator=(const PtyProgram&) = delete;
    /// Kills the program if it still runs.
    ~PtyProgram();

    /// Waits until the output holds \p part after the place that the wait before found.
    /// \return false when the program ends, or very long passes, without that.
    bool waitFor(std::string_view part);
    /// Types \p keys into the terminal.
    void type(std::string_view keys) const;
    /// Makes the window \p columns wide.
    void resize(unsigned short columns) const;
    /// Waits for the end of the program.
    /// \return its exit status; the negative signal number if one ended it, or if it had to be killed.
    int finish();
    /// Returns the processor time that the program has used so far.
    std::chrono::nanoseconds processorTime() const;
    /// All that the terminal got so far, with CR LF at the ends of lines.
    const std::string& output() const { return m_output; }

private:
    bool readMore();
    int millisecondsLeft() const;

    pid_t m_child = -1;
    int m_master = -1;
    std::chrono::steady_clock::time_point m_deadline;
    std::string m_output;
    std::size_t m_found = 0;
};

}  // namespace vexa::e2e
