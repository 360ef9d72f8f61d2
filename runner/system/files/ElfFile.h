#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace vexa::runner {

/// A symbol that a shared object offers to others, or wants of them.
struct ElfSymbol {
    std::string name;
    bool isDefined = false;  ///< whether it offers it
    bool isStrong = false;   ///< no weak one: of templates and inline functions, or one that may be missing
    bool isUnique = false;   ///< one that the whole process shares, and that keeps its object loaded
};

/// What there is to know about a shared object from its file.
struct ElfFile {
    int fileClass = 0;  ///< ELFCLASS64 …
    int machine = 0;    ///< EM_X86_64 …
    int type = 0;       ///< ET_DYN …
    bool hasExecutableStack = false;
    bool hasTextRelocations = false;
    bool isNeverUnloaded = false;       ///< linked to stay for good
    std::vector<std::string> needed;    ///< the libraries it wants
    std::vector<std::string> runPaths;  ///< the folders it looks for them in, an entry each
    std::vector<ElfSymbol> symbols;     ///< without those that nobody else sees
};

/// A file that is no shared object.
class ElfError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// \throws ElfError
ElfFile readElfFile(const std::string& path);

/// A symbol's name as it stands in the source, when it can be told.
std::string demangled(const std::string& symbol);

}  // namespace vexa::runner
