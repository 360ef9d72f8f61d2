#include "Child.h"

#include <grp.h>
#include <sys/mman.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <stdexcept>

namespace vexa::tests {
namespace {

using Milliseconds = std::chrono::milliseconds;

constexpr uid_t kNobody = 65534;
constexpr int kWrongResult = 3;

// Drops the output of the child, because its crash messages would confuse readers of the tests' output.
void silence() {
    const int nowhere = memfd_create("discarded", 0);
    dup2(nowhere, STDERR_FILENO);
}

[[noreturn]] void beChild(const std::function<std::string()>& work, int result, Milliseconds patience) {
    std::signal(SIGALRM, SIG_DFL);
    itimerval timer{};
    timer.it_value.tv_sec = patience.count() / 1000;
    timer.it_value.tv_usec = patience.count() % 1000 * 1000;
    setitimer(ITIMER_REAL, &timer, nullptr);
    silence();
    std::string text;
    try {
        text = work();
    } catch (const std::exception& escaped) {
        text = std::string("let out an exception: ") + escaped.what();
    }
    const ssize_t written = write(result, text.data(), text.size());
    _exit(written == static_cast<ssize_t>(text.size()) ? 0 : kWrongResult);
}

std::string readAll(int descriptor) {
    std::string text;
    std::array<char, 4096> piece{};
    for (ssize_t got = 0; (got = read(descriptor, piece.data(), piece.size())) > 0;) {
        text.append(piece.data(), static_cast<std::size_t>(got));
    }
    return text;
}

std::string endOf(pid_t child, std::string result) {
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM) return "did not return";
    if (WIFSIGNALED(status)) return "ended by signal " + std::to_string(WTERMSIG(status));
    if (WEXITSTATUS(status) != 0) return "ended with status " + std::to_string(WEXITSTATUS(status));
    return result;
}

}  // namespace

std::string inChild(const std::function<std::string()>& work, Milliseconds patience) {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    const pid_t child = fork();
    if (child == -1) throw std::runtime_error("no child");
    if (child == 0) {
        close(ends[0]);
        beChild(work, ends[1], patience);
    }
    close(ends[1]);
    std::string result = readAll(ends[0]);
    close(ends[0]);
    return endOf(child, std::move(result));
}

std::string inChildWithoutRights(const std::function<std::string()>& work) {
    return inChild([&]() -> std::string {
        const bool isRoot = geteuid() == 0;
        if (isRoot && (setgroups(0, nullptr) != 0 || setresgid(kNobody, kNobody, kNobody) != 0 ||
                       setresuid(kNobody, kNobody, kNobody) != 0)) {
            return "kept its rights";
        }
        return work();
    });
}

long openDescriptors() { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); }

}  // namespace vexa::tests
