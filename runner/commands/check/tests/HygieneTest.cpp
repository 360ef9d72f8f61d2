#include "commands/check/tests/Tests.h"

#include <dlfcn.h>
#include <elf.h>
#include <link.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "system/files/ElfFile.h"
#include "text/Lines.h"
#include "text/StartsWith.h"

namespace vexa::runner {
namespace {

constexpr std::string_view kEntry = "vexaAddOn";
constexpr std::size_t kNamesShown = 3;
constexpr std::size_t kNameLength = 60;

// Names of templates can be very long.
std::string shortened(const std::string& name) {
    return name.size() <= kNameLength ? name : name.substr(0, kNameLength) + "...";
}

// Returns the first few names.
std::string listed(const std::vector<std::string>& names) {
    std::string text;
    for (std::size_t i = 0; i != std::min(names.size(), kNamesShown); ++i) {
        text += (i == 0 ? "" : ", ") + shortened(names[i]);
    }
    const std::size_t more = names.size() - std::min(names.size(), kNamesShown);
    return more == 0 ? text : text + " and " + std::to_string(more) + " more";
}

// ---- Can this machine load the file?

std::string bitsOf(const ElfFile& file) { return file.fileClass == ELFCLASS64 ? "64" : "32"; }

// Returns why this program cannot load the file; empty if it can.
std::string whyOfAnotherKind(const ElfFile& file) {
    const ElfFile own = readElfFile("/proc/self/exe");
    if (file.fileClass != own.fileClass) {
        return "it is built for " + bitsOf(file) + " bits, but the host has " + bitsOf(own);
    }
    if (file.machine != own.machine) {
        return "it is built for processors of ELF machine " + std::to_string(file.machine) + ", but the host for " +
               std::to_string(own.machine);
    }
    return file.type == ET_DYN ? "" : "it is an object file or a program, not a shared object; link it as a module";
}

using Library = std::unique_ptr<void, int (*)(void*)>;

// Returns null if the library cannot be opened; dlerror() then has the reason.
Library opened(const std::string& file, int flags) { return {dlopen(file.c_str(), flags | RTLD_LOCAL), dlclose}; }

std::filesystem::path folderOf(const Library& library) {
    link_map* object = nullptr;
    if (library == nullptr || dlinfo(library.get(), RTLD_DI_LINKMAP, &object) != 0) return {};
    return std::filesystem::path(object->l_name).parent_path();
}

std::string whereFrom(const std::string& symbol) {
    if (startsWith(symbol, "VexaUtil")) return "the host has no such function; was it written for another host?";
    if (startsWith(demangled(symbol), "vexa::"))
        return "link the version of vexa::vexautilutil with which it was compiled";
    return "link the library that has it";
}

// Opens the file with lazy binding, which succeeds even if functions are missing. It fails if an object is missing; the
// result is then empty.
std::vector<std::string> missingSymbols(const std::string& path, const ElfFile& file) {
    const Library lazily = opened(path, RTLD_LAZY);
    std::vector<std::string> missing;
    if (lazily == nullptr) return missing;
    for (const ElfSymbol& symbol : file.symbols) {
        const auto has = [&](void* library) { return dlsym(library, symbol.name.c_str()) != nullptr; };
        const bool isWanted = !symbol.isDefined && symbol.isStrong;
        if (isWanted && !has(RTLD_DEFAULT) && !has(lazily.get())) missing.push_back(symbol.name);
    }
    return missing;
}

std::string explained(const std::string& path, const ElfFile& file, const std::string& error) {
    constexpr std::string_view kNotFound = ": cannot open shared object file";
    const std::size_t library = error.find(kNotFound);
    if (library != std::string::npos) {
        const std::string folders = file.runPaths.empty() ? "" : " its run path (" + listed(file.runPaths) + "),";
        return "the library " + error.substr(0, library) + ", which it needs, was not found in" + folders +
               " LD_LIBRARY_PATH and the system's folders";
    }
    std::string lines = "its symbols cannot be bound: " + error;
    for (const std::string& symbol : missingSymbols(path, file)) {
        lines += "\nno library has " + demangled(symbol) + ": " + whereFrom(symbol);
    }
    return lines;
}

void checkBinding(const std::string& path, const ElfFile& file, std::string& errors) {
    if (opened(path, RTLD_NOW) == nullptr) addLine(errors, explained(path, file, dlerror()));
}

// ---- Exported symbols

// Linkers and instrumentation add names of their own.
bool isToolchains(const std::string& name) {
    return startsWith(name, "__") || name == "_init" || name == "_fini" || name == "_edata" || name == "_end";
}

void checkExports(Trial& trial, const ElfFile& file, std::string& errors) {
    std::vector<std::string> strong;
    std::vector<std::string> weak;
    bool hasEntry = false;
    for (const ElfSymbol& symbol : file.symbols) {
        if (!symbol.isDefined || isToolchains(symbol.name)) continue;
        const bool isEntry = symbol.name == kEntry;
        hasEntry |= isEntry;
        if (!isEntry) (symbol.isStrong ? strong : weak).push_back(demangled(symbol.name));
    }
    const std::string mend = "; link with a version script that exports only vexaAddOn";
    if (!hasEntry) addLine(errors, "it does not export vexaAddOn, so it is not an add-on");
    if (!strong.empty()) {
        addLine(errors, "it exports more than vexaAddOn; other add-ons may use these symbols by accident: " +
                            listed(strong) + mend);
    }
    if (!weak.empty()) {
        trial.warn("it exports templates and inline functions; add-ons may share them by accident: " + listed(weak) +
                   mend);
    }
}

// ---- Link options

// Returns true if this program has loaded, from `folder`, a library that the add-on needs. In build trees, CMake adds
// such a folder to the run path.
bool isWhereTheHostLooks(const std::string& folder, const ElfFile& file) {
    return std::any_of(file.needed.begin(), file.needed.end(), [&](const std::string& library) {
        std::error_code ignored;
        return std::filesystem::equivalent(folder, folderOf(opened(library, RTLD_LAZY | RTLD_NOLOAD)), ignored);
    });
}

void checkRunPaths(Trial& trial, const ElfFile& file, std::string& errors) {
    std::vector<std::string> paths = file.runPaths;
    // CMake leaves empty entries at the end as room for the run path of the installed file.
    while (!paths.empty() && paths.back().empty()) paths.pop_back();
    for (const std::string& path : paths) {
        if (startsWith(path, "$ORIGIN") || startsWith(path, "${ORIGIN}")) continue;
        if (startsWith(path, "/")) {
            if (isWhereTheHostLooks(path, file)) continue;
            trial.warn("it looks for libraries in " + path +
                       ", a folder of this machine; install it with a run path that starts with $ORIGIN");
        } else {
            addLine(errors, "it looks for libraries in \"" + path +
                                "\", which means the current folder of the host, where anybody can put one");
        }
    }
}

void checkMemory(const ElfFile& file, std::string& errors) {
    if (file.hasExecutableStack) {
        addLine(errors,
                "it makes the stack of the whole host executable; the cause is an assembly source without a "
                ".note.GNU-stack section, or -z execstack");
    }
    if (file.hasTextRelocations) {
        addLine(errors, "the loader must change its code (text relocations); compile all of it with -fPIC");
    }
}

}  // namespace

Verdict binaryHygiene(Trial& trial) {
    const std::string path = std::filesystem::absolute(trial.subject().addOn());
    std::string errors;
    try {
        const ElfFile file = readElfFile(path);
        const std::string otherKind = whyOfAnotherKind(file);
        if (!otherKind.empty()) throw CaseFailed(otherKind);
        checkExports(trial, file, errors);
        checkRunPaths(trial, file, errors);
        checkMemory(file, errors);
        trial.nowTrying("all symbols are bound");
        checkBinding(path, file, errors);
        trial.nowTrying("");
    } catch (const ElfError& error) {
        throw CaseFailed(error.what());
    }
    if (!errors.empty()) throw CaseFailed(errors);
    return {};
}

}  // namespace vexa::runner
