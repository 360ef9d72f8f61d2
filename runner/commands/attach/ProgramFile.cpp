#include "commands/attach/ProgramFile.h"

#include <elf.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "system/files/ElfFile.h"
#include "system/files/ProgramFiles.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLoader = "ld-linux-x86-64.so.2";
constexpr const char* kSymbolOfUsableLoader = "__rseq_offset";  // new in glibc 2.35
constexpr int kMostScripts = 4;  // as many interpreters as the system starts for one another

// The system lets no variable change the loading of such a program.
bool getsPrivileges(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return false;
    const bool changesUser = (status.st_mode & S_ISUID) != 0 && status.st_uid != getuid();
    const bool changesGroup = (status.st_mode & S_ISGID) != 0 && status.st_gid != getgid();
    const bool hasCapabilities = getuid() != 0 && getxattr(path.c_str(), "security.capability", nullptr, 0) > 0;
    return changesUser || changesGroup || hasCapabilities;
}

bool isUsableLoader(const std::string& path) {
    const ElfFile loader = readElfFile(path);
    return std::any_of(loader.symbols.begin(), loader.symbols.end(),
                       [](const ElfSymbol& symbol) { return symbol.name == kSymbolOfUsableLoader; });
}

std::string whyNotAttachable(const ElfFile& program) {
    if (program.fileClass != ELFCLASS64 || program.machine != EM_X86_64) return "it is no x86-64 program";
    if (program.type != ET_EXEC && program.type != ET_DYN) return "it is no program";
    if (program.interpreter.empty()) return "it is linked statically, so nothing can be loaded into it";
    if (fs::path(program.interpreter).filename() != kLoader) {
        return "its loader, " + program.interpreter + ", is not that of glibc";
    }
    if (!isUsableLoader(program.interpreter)) {
        return "its loader, " + program.interpreter + ", is older than glibc 2.35";
    }
    return "";
}

// The words after `#!`; none if the file is no script.
std::pair<std::string, std::string> interpreterLine(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::string line;
    std::array<char, 2> mark{};
    if (!in.read(mark.data(), mark.size()) || mark[0] != '#' || mark[1] != '!') return {};
    std::getline(in, line);
    std::istringstream words(line);
    std::pair<std::string, std::string> found;
    words >> found.first >> found.second;
    return found;
}

// Scripts start with `#!/usr/bin/env NAME` if they do not know where NAME is.
std::string interpreterOf(const std::string& script) {
    const auto [interpreter, argument] = interpreterLine(script);
    const bool isSearched = fs::path(interpreter).filename() == "env" && !argument.empty() && argument.front() != '-';
    const std::string found = isSearched ? findProgram(argument) : "";
    return found.empty() ? interpreter : found;
}

std::string whyNotAttachable(const std::string& path, int scripts) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found) return "no such file";
    if (error) return error.message();
    if (fs::is_directory(status)) return "it is a folder";
    if (!isExecutableFile(path)) return "it is not executable";
    const std::string interpreter = interpreterOf(path);
    if (!interpreter.empty()) {
        if (scripts == 0) return "it is a script for a script, and so on";
        const std::string reason = whyNotAttachable(interpreter, scripts - 1);
        return reason.empty() ? "" : "its interpreter, " + interpreter + ": " + reason;
    }
    if (getsPrivileges(path)) return "it runs with other privileges (setuid, setgid or capabilities)";
    try {
        return whyNotAttachable(readElfFile(path));
    } catch (const ElfError&) {
        return "it is neither a program nor a script that starts with #!";
    }
}

}  // namespace

std::string whyNotAttachable(const std::string& path) { return whyNotAttachable(path, kMostScripts); }

}  // namespace vexa::runner
