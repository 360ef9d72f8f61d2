#include "commands/debug/Debugger.h"

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "commands/debug/FoundDebugger.h"
#include "system/files/MemoryFile.h"
#include "system/processes/ExecArguments.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

// The scripts as bytes: string literals of this length are not portable.
constexpr char kPlacesScript[] = {
#include "places.py.inc"
};
constexpr char kGdbScript[] = {
#include "gdb.py.inc"
};
constexpr char kLldbScript[] = {
#include "lldb.py.inc"
};
constexpr const char* kModulesVariable = "PYTHONPATH";

template <std::size_t size>
std::string textOf(const char (&bytes)[size]) {
    return std::string(bytes, size);
}

bool isTracingAllowed() {
    const pid_t child = fork();
    if (child == 0) _exit(ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0 ? 0 : 1);
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string whyNot(const FoundDebugger& debugger) {
    if (!debugger.problem.empty() || isTracingAllowed()) return debugger.problem;
    return "a debugger cannot trace programs here; /proc/sys/kernel/yama/ptrace_scope must be less than 2, and a "
           "container needs --cap-add=SYS_PTRACE";
}

// The variables of the program that differ from those of the debugger.
nlohmann::json changedVariables(const FoundDebugger& debugger) {
    nlohmann::json variables = nlohmann::json::object();
    if (debugger.modules.empty()) return variables;
    const char* const value = std::getenv(kModulesVariable);
    variables[kModulesVariable] = value == nullptr ? nlohmann::json() : nlohmann::json(value);
    return variables;
}

// The script reads its settings from the line before it.
std::string scriptOf(const DebuggerCall& call, const FoundDebugger& debugger) {
    const nlohmann::json settings = {{"place", textOf(call.place)},
                                     {"variable", kStopVariable},
                                     {"addOns", call.addOns},
                                     {"environment", changedVariables(debugger)},
                                     {"batch", call.batch}};
    const std::string text = settings.dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
    const bool isGdb = debugger.kind == Debugger_e::Gdb;
    return "SETTINGS = " + nlohmann::json(text).dump(-1, ' ', true) + '\n' + textOf(kPlacesScript) + '\n' +
           (isGdb ? textOf(kGdbScript) : textOf(kLldbScript));
}

// The Python that runs the script in the file `descriptor` and closes it, so that the run does not inherit it.
std::string runScript(int descriptor) {
    const std::string number = std::to_string(descriptor);
    return "import os; vexa = open('/proc/self/fd/" + number + "').read(); os.close(" + number + "); exec(vexa, {})";
}

// The words of the command line that differ from debugger to debugger.
struct Words {
    std::vector<std::string> start;  // of each call
    std::vector<std::string> batch;  // with --batch
    const char* command;             // the option that runs a command
    const char* python;              // the command that runs Python
    const char* program;             // what stands before the program and its arguments
};

Words wordsOf(Debugger_e kind) {
    if (kind == Debugger_e::Gdb) return {{"-q"}, {"-nx", "-batch"}, "-ex", "python ", "--args"};
    return {{"-Q"}, {"-x"}, "-o", "script ", "--"};
}

std::vector<std::string> argumentsOf(const DebuggerCall& call, const FoundDebugger& debugger, int script) {
    const Words words = wordsOf(debugger.kind);
    std::vector<std::string> arguments = {debugger.program};
    const auto add = [&](const std::vector<std::string>& more) {
        arguments.insert(arguments.end(), more.begin(), more.end());
    };
    add(words.start);
    if (call.batch) add(words.batch);
    add({words.command, words.python + runScript(script)});
    add(call.arguments);
    // Without this, a failed command of the user would decide on the exit status.
    if (call.batch) add({words.command, "quit 0"});
    add({words.program, std::filesystem::read_symlink("/proc/self/exe"), kDebuggedCommand});
    add(call.words);
    return arguments;
}

void replaceProcess(const FoundDebugger& debugger, const std::vector<std::string>& arguments) {
    const char* const others = std::getenv(kModulesVariable);
    const std::string modules = debugger.modules + (others == nullptr ? "" : std::string(":") + others);
    if (!debugger.modules.empty()) setenv(kModulesVariable, modules.c_str(), 1);
    execvp(arguments.front().c_str(), execArguments(arguments).data());
}

}  // namespace

ExitStatus_e enterDebugger(const DebuggerCall& call) {
    const FoundDebugger debugger = findDebugger(call.debugger);
    const std::string reason = whyNot(debugger);
    if (!reason.empty()) {
        tell("debug", reason);
        return ExitStatus_e::BadUsageOrInput;
    }
    const MemoryFile script(scriptOf(call, debugger));
    fcntl(script.descriptor(), F_SETFD, 0);  // the debugger inherits it
    replaceProcess(debugger, argumentsOf(call, debugger, script.descriptor()));
    tell("debug", debugger.program + " cannot be started: " + std::strerror(errno));
    return ExitStatus_e::BadUsageOrInput;
}

}  // namespace vexa::runner
