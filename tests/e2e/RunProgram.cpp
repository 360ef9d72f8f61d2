#include "RunProgram.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "ProgramFiles.h"

namespace vexa::e2e {
namespace {

constexpr int kCannotExecute = 127;

// Between fork and exec: only calls that are safe there.
[[noreturn]] void becomeProgram(const char* folder, char* const* arguments, int in, int out, int err) {
    if (dup2(in, STDIN_FILENO) >= 0 && dup2(out, STDOUT_FILENO) >= 0 && dup2(err, STDERR_FILENO) >= 0 &&
        chdir(folder) == 0) {
        execvp(arguments[0], arguments);
    }
    _exit(kCannotExecute);
}

double secondsOf(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

// Waits for the child's end.
ProgramResult endOf(pid_t child) {
    int status = 0;
    rusage usage{};
    while (wait4(child, &status, 0, &usage) < 0) {
        if (errno != EINTR) throwLastError("wait4");
    }
    ProgramResult result;
    result.status = WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
    result.seconds = secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
    result.peakKiB = usage.ru_maxrss;
    return result;
}

}  // namespace

Program withoutChildSignals(Program program) {
    program.arguments.insert(program.arguments.begin(), {"timeout", "300", "env", "--ignore-signal=CHLD"});
    return program;
}

ProgramResult runProgram(const Program& program) {
    const File in = unnamedFile(program.input);
    const File out = unnamedFile("");
    const File err = unnamedFile("");
    const std::vector<char*> arguments = argumentVector(program.arguments);
    const std::string folder = program.folder;
    const int errDescriptor = fileno(program.asOneOutput ? out.get() : err.get());
    const pid_t child = fork();
    if (child < 0) throwLastError("fork");
    if (child == 0) {
        becomeProgram(folder.c_str(), arguments.data(), fileno(in.get()), fileno(out.get()), errDescriptor);
    }
    ProgramResult result = endOf(child);
    result.out = contentOf(out);
    result.err = contentOf(err);
    return result;
}

}  // namespace vexa::e2e
