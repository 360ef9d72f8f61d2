#pragma once

#include <string>

namespace vexa::runner {

/// Sends what this process prints on an output to a file, as long as it lives.
class RedirectedOutput {
public:
    /// \param output STDOUT_FILENO or STDERR_FILENO
    /// \param file   exists; what is printed is appended to it.
    RedirectedOutput(int output, const std::string& file);
    RedirectedOutput(const RedirectedOutput&) = delete;
    RedirectedOutput& operator=(const RedirectedOutput&) = delete;
    ~RedirectedOutput();

private:
    int m_output;
    int m_real;  // negative if an add-on has closed it
};

}  // namespace vexa::runner
