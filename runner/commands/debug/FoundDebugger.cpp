#include "commands/debug/FoundDebugger.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>
#include <vector>

#include "system/files/ProgramFiles.h"
#include "text/ShellWord.h"
#include "text/StartsWith.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

std::string outputOf(const std::string& shellCommand) {
    const auto close = [](FILE* file) { pclose(file); };
    // NOLINTNEXTLINE(cert-env33-c): the user named the program that it starts
    const std::unique_ptr<FILE, decltype(close)> pipe(popen((shellCommand + " 2>/dev/null").c_str(), "re"), close);
    std::string text;
    char part[4096];
    while (pipe && std::fgets(part, sizeof part, pipe.get()) != nullptr) text += part;
    return text;
}

bool has(const std::string& text, const char* part) { return text.find(part) != std::string::npos; }

// The lldb of some distributions looks for its modules in a folder that does not exist. They are beside its program.
std::string modulesOfLldb(const std::string& path) {
    std::error_code error;
    const fs::path libraries = fs::canonical(path, error).parent_path().parent_path() / "lib";
    for (const fs::directory_entry& entry : fs::directory_iterator(libraries, error)) {
        const fs::path folder = entry.path() / "dist-packages";
        const bool isPython = startsWith(entry.path().filename().string(), "python3");
        if (isPython && fs::exists(folder / "lldb" / "embedded_interpreter.py", error)) return folder;
    }
    return "";
}

// The options with which gdb was built say whether it has Python.
FoundDebugger gdbAt(const std::string& program) {
    FoundDebugger found{Debugger_e::Gdb, program, "", ""};
    if (!has(outputOf(shellWord(program) + " --configuration"), "--with-python")) {
        found.problem = program + " has no Python; install the full gdb: apt-get install gdb";
    }
    return found;
}

FoundDebugger lldbAt(const std::string& program) {
    FoundDebugger found{Debugger_e::Lldb, program, modulesOfLldb(findProgram(program)), ""};
    const std::string variable = found.modules.empty() ? "" : "PYTHONPATH=" + shellWord(found.modules) + ' ';
    if (!has(outputOf(variable + shellWord(program) + " -x -b -o 'script print(6 * 7)'"), "42")) {
        found.problem = program + " has no Python; install the full lldb: apt-get install lldb";
    }
    return found;
}

}  // namespace

FoundDebugger findDebugger(const std::optional<std::string>& wanted) {
    using Programs = std::vector<std::string>;
    for (const std::string& program : wanted ? Programs{*wanted} : Programs{"gdb", "lldb"}) {
        if (!isExecutableFile(findProgram(program))) continue;
        return has(fs::path(program).filename(), "lldb") ? lldbAt(program) : gdbAt(program);
    }
    if (wanted) return {Debugger_e::Gdb, "", "", *wanted + " was not found"};
    return {Debugger_e::Gdb, "", "", "neither gdb nor lldb was found; install one of them: apt-get install gdb"};
}

}  // namespace vexa::runner
