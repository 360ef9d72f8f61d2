#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace vexa::runner {

/// A symbol that a shared object exports or imports.
struct ElfSymbol {
    std::string name;
    bool isDefined = false;  ///< whether it is exported
    bool isStrong = false;   ///< not weak, as those of templates and inline functions, and optional imports, are
    bool isUnique = false;   ///< shared by the whole process; its object is never unloaded
};

/// The facts that the file of a shared object has.
struct ElfFile {
    int fileClass = 0;  ///< ELFCLASS64 …
    int machine = 0;    ///< EM_X86_64 …
    int type = 0;       ///< ET_DYN …
    bool hasExecutableStack = false;
    bool hasTextRelocations = false;
    bool isNeverUnloaded = false;       ///< linked with -z nodelete
    std::string interpreter;            ///< the loader that the system starts for a program; empty for none
    std::vector<std::string> needed;    ///< the libraries it is linked to
    std::vector<std::string> runPaths;  ///< the folders in which the loader looks for them
    std::vector<ElfSymbol> symbols;     ///< those that other objects can see
};

/// The file is not a shared object.
class ElfError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// \throws ElfError
ElfFile readElfFile(const std::string& path);

/// The name of a symbol as in the source; \p symbol if it is not mangled.
std::string demangled(const std::string& symbol);

}  // namespace vexa::runner
