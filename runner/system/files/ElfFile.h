#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace vexa::runner {

/// A symbol that a shared object exports or imports.
struct ElfSymbol {
    std::string name;
    bool isDefined = false;  ///< true if the file exports it, false if it imports it
    bool isStrong = false;   ///< false if it is weak: from a template, an inline function, or an optional import
    bool isUnique = false;   ///< shared by the whole process, which prevents unloading
};

/// The facts about a shared object that its file contains.
struct ElfFile {
    int fileClass = 0;  ///< ELFCLASS64 …
    int machine = 0;    ///< EM_X86_64 …
    int type = 0;       ///< ET_DYN …
    bool hasExecutableStack = false;
    bool hasTextRelocations = false;
    bool isNeverUnloaded = false;       ///< linked with -z nodelete
    std::string interpreter;            ///< the loader that the system starts for a program; empty for none
    std::vector<std::string> needed;    ///< the libraries to which it is linked
    std::vector<std::string> runPaths;  ///< the folders in which the loader looks for them
    std::vector<ElfSymbol> symbols;     ///< the symbols that other objects can see
};

/// Reports a file that is not a shared object.
class ElfError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// \throws ElfError
ElfFile readElfFile(const std::string& path);

/// Returns the name of a symbol as in the source; \p symbol if it is not mangled.
std::string demangled(const std::string& symbol);

}  // namespace vexa::runner
