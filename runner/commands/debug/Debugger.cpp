#include "commands/debug/Debugger.h"

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string_view>

#include "system/files/MemoryFile.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

// The script as bytes: a string literal of this length is not portable.
constexpr char kScript[] = {
#include "gdb.py.inc"
};

enum class Gdb_e { Missing, WithoutPython, Usable };

// The options with which gdb was built say whether it has Python.
Gdb_e findGdb() {
    const auto close = [](FILE* file) { pclose(file); };
    // NOLINTNEXTLINE(cert-env33-c): the command is fixed
    const std::unique_ptr<FILE, decltype(close)> pipe(popen("gdb --configuration 2>/dev/null", "re"), close);
    std::string text;
    char part[4096];
    while (pipe && std::fgets(part, sizeof part, pipe.get()) != nullptr) text += part;
    if (text.empty()) return Gdb_e::Missing;
    return text.find("--with-python") == std::string::npos ? Gdb_e::WithoutPython : Gdb_e::Usable;
}

bool isTracingAllowed() {
    const pid_t child = fork();
    if (child == 0) _exit(ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0 ? 0 : 1);
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string whyNoDebugger() {
    switch (findGdb()) {
        case Gdb_e::Missing: return "gdb was not found; install it: apt-get install gdb";
        case Gdb_e::WithoutPython: return "this gdb has no Python; install the full one: apt-get install gdb";
        case Gdb_e::Usable: break;
    }
    if (isTracingAllowed()) return "";
    return "a debugger cannot trace programs here; /proc/sys/kernel/yama/ptrace_scope must be less than 2, and a "
           "container needs --cap-add=SYS_PTRACE";
}

// The script reads its settings from the line before it.
std::string scriptOf(const DebuggerCall& call) {
    const nlohmann::json settings = {
        {"place", textOf(call.place)}, {"variable", kStopVariable}, {"addOns", call.addOns}, {"batch", call.batch}};
    const std::string text = settings.dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
    return "SETTINGS = " + nlohmann::json(text).dump(-1, ' ', true) + '\n' + std::string(kScript, sizeof kScript);
}

// The gdb command that runs the script in the file `descriptor` and closes it, so that the run does not inherit it.
std::string runScript(int descriptor) {
    return "python import os; vexa = os.fdopen(" + std::to_string(descriptor) +
           "); vexa.seek(0); SCRIPT = vexa.read(); vexa.close(); exec(SCRIPT)";
}

std::vector<std::string> argumentsOf(const DebuggerCall& call, int script) {
    std::vector<std::string> arguments = {"gdb", "-q"};
    if (call.batch) arguments.insert(arguments.end(), {"-nx", "-batch"});
    arguments.insert(arguments.end(), {"-ex", runScript(script)});
    arguments.insert(arguments.end(), call.arguments.begin(), call.arguments.end());
    // Without this, a failed command of the user would decide on the exit status.
    if (call.batch) arguments.insert(arguments.end(), {"-ex", "quit 0"});
    arguments.insert(arguments.end(), {"--args", std::filesystem::read_symlink("/proc/self/exe"), kDebuggedCommand});
    arguments.insert(arguments.end(), call.words.begin(), call.words.end());
    return arguments;
}

void replaceProcess(std::vector<std::string>& arguments) {
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    execvp(pointers.front(), pointers.data());
}

}  // namespace

ExitStatus_e enterDebugger(const DebuggerCall& call) {
    const std::string reason = whyNoDebugger();
    if (!reason.empty()) {
        tell("debug", reason);
        return ExitStatus_e::BadUsageOrInput;
    }
    const MemoryFile script(scriptOf(call));
    fcntl(script.descriptor(), F_SETFD, 0);  // the debugger inherits it
    std::vector<std::string> arguments = argumentsOf(call, script.descriptor());
    replaceProcess(arguments);
    tell("debug", std::string("gdb cannot be started: ") + std::strerror(errno));
    return ExitStatus_e::BadUsageOrInput;
}

}  // namespace vexa::runner
