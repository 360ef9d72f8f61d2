#include "PtyProgram.h"

#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>

namespace vexa::e2e {
namespace {

constexpr std::chrono::seconds kLongestRun{60};  // so long only when something is wrong
constexpr int kCannotExecute = 127;

std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

[[noreturn]] void becomeProgram(const char* folder, char* const* arguments, char* const* environment) {
    for (; *environment != nullptr; ++environment) putenv(*environment);
    if (chdir(folder) == 0) execvp(arguments[0], arguments);
    _exit(kCannotExecute);
}

}  // namespace

PtyProgram::PtyProgram(const Program& program, unsigned short columns, const std::vector<std::string>& environment)
    : m_deadline(std::chrono::steady_clock::now() + kLongestRun) {
    const std::vector<char*> arguments = pointersTo(program.arguments);
    const std::vector<char*> variables = pointersTo(environment);
    const std::string folder = program.folder;
    winsize window{};
    window.ws_col = columns;
    window.ws_row = 24;
    m_child = forkpty(&m_master, nullptr, nullptr, &window);
    if (m_child < 0) throw std::system_error(errno, std::generic_category(), "forkpty");
    if (m_child == 0) becomeProgram(folder.c_str(), arguments.data(), variables.data());
}

PtyProgram::~PtyProgram() {
    if (m_child > 0) {
        kill(m_child, SIGKILL);
        finish();
    }
    close(m_master);
}

bool PtyProgram::waitFor(std::string_view part) {
    std::size_t found = m_output.find(part, m_found);
    while (found == std::string::npos) {
        if (!readMore()) return false;
        found = m_output.find(part, m_found);
    }
    m_found = found + part.size();
    return true;
}

void PtyProgram::type(std::string_view keys) const {
    if (write(m_master, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size())) {
        throw std::system_error(errno, std::generic_category(), "write");
    }
}

void PtyProgram::resize(unsigned short columns) const {
    winsize window{};
    window.ws_col = columns;
    window.ws_row = 24;
    if (ioctl(m_master, TIOCSWINSZ, &window) != 0) throw std::system_error(errno, std::generic_category(), "resize");
}

std::chrono::nanoseconds PtyProgram::processorTime() const {
    clockid_t clock{};
    timespec time{};
    if (clock_getcpuclockid(m_child, &clock) != 0 || clock_gettime(clock, &time) != 0) return {};
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

int PtyProgram::finish() {
    while (readMore()) {}
    // The terminal is closed an instant before the program is gone.
    int status = 0;
    pid_t ended = 0;
    while ((ended = waitpid(m_child, &status, WNOHANG)) == 0 && millisecondsLeft() > 0) usleep(1000);
    if (ended == 0) {
        kill(m_child, SIGKILL);
        waitpid(m_child, &status, 0);
    }
    m_child = -1;
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

// Returns false at the end of the program's output.
bool PtyProgram::readMore() {
    pollfd waited{m_master, POLLIN, 0};
    if (millisecondsLeft() == 0 || poll(&waited, 1, millisecondsLeft()) <= 0) {
        kill(m_child, SIGKILL);
        return false;
    }
    std::array<char, 4096> chunk{};
    const ssize_t count = read(m_master, chunk.data(), chunk.size());
    if (count <= 0) return false;
    m_output.append(chunk.data(), static_cast<std::size_t>(count));
    return true;
}

int PtyProgram::millisecondsLeft() const {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(m_deadline - std::chrono::steady_clock::now());
    return std::max(0, static_cast<int>(left.count()));
}

}  // namespace vexa::e2e
