#include "RunProgram.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

namespace vexa::e2e {
namespace {

constexpr int kCannotExecute = 127;

struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, FileCloser>;

[[noreturn]] void throwLastError(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

// Files rather than pipes: nobody has to read while the program runs.
File unnamedFile(const std::string& content) {
    File file(std::tmpfile());
    if (!file) throwLastError("tmpfile");
    std::fwrite(content.data(), 1, content.size(), file.get());
    if (std::fflush(file.get()) != 0) throwLastError("tmpfile");
    std::rewind(file.get());
    return file;
}

std::string contentOf(const File& file) {
    std::string content;
    std::array<char, 4096> chunk{};
    std::rewind(file.get());
    while (const std::size_t count = std::fread(chunk.data(), 1, chunk.size(), file.get())) {
        content.append(chunk.data(), count);
    }
    return content;
}

std::vector<char*> argumentVector(const std::vector<std::string>& arguments) {
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

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
