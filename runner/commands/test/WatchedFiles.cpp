#include "commands/test/WatchedFiles.h"

#include <optional>
#include <system_error>

#include "commands/test/MacroPaths.h"
#include "formats/ProjectFile.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

bool isFolder(const std::string& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

void addFilesOf(const std::string& macro, WatchedFiles::Stamps& stamps) {
    stamps[macro] = stampOf(macro);
    for (const char* const extension : kBesideMacro) {
        const std::string file = besideOf(macro, extension);
        stamps[file] = stampOf(file);
    }
}

}  // namespace

void WatchedFiles::set(const TestOptions& options) {
    m_paths = options.paths;
    m_shared = {options.addOns.begin(), options.addOns.end()};
    for (const auto& file : {options.style, options.contract.projectFile, options.contract.host}) {
        if (file) m_shared.insert(*file);
    }
    if (!options.contract.ignoresProjectFile) m_shared.insert(fs::absolute(kProjectFile).string());
}

// A link may lead to a file in another folder.
std::set<fs::path> WatchedFiles::folders() const {
    std::set<fs::path> folders;
    for (const std::string& path : m_paths) {
        const fs::path absolute = fs::absolute(path);
        folders.insert(isFolder(path) ? absolute : absolute.parent_path());
    }
    for (const std::string& file : m_shared) {
        const fs::path path = fs::absolute(file);
        std::error_code error;
        const fs::path target = fs::weakly_canonical(path, error);  // empty if a folder of it vanishes meanwhile
        folders.insert(path.parent_path());
        if (!error) folders.insert(target.parent_path());
    }
    return folders;
}

WatchedFiles::Stamps WatchedFiles::stamps() const {
    Stamps stamps;
    for (const std::string& file : m_shared) stamps[file] = stampOf(file);
    for (const std::string& path : m_paths) {
        if (!isFolder(path)) {
            addFilesOf(path, stamps);
            continue;
        }
        std::error_code error;
        for (const auto& entry : fs::directory_iterator(path, error)) {
            const std::string file = entry.path().string();
            if (entry.path().extension() == kMacro) addFilesOf(file, stamps);
            if (isBesideMacro(file)) stamps[file] = stampOf(file);
        }
    }
    return stamps;
}

WatchedFiles::Stamps WatchedFiles::stampsFor(const std::string& macro) const {
    Stamps stamps;
    for (const std::string& file : m_shared) stamps[file] = stampOf(file);
    addFilesOf(macro, stamps);
    return stamps;
}

std::set<std::string> WatchedFiles::difference(const Stamps& before, const Stamps& now) {
    std::set<std::string> files;
    for (const Stamps* const stamps : {&before, &now}) {
        const Stamps& others = stamps == &before ? now : before;
        for (const auto& [file, stamp] : *stamps) {
            const auto other = others.find(file);
            if ((other == others.end() ? FileStamp() : other->second) != stamp) files.insert(file);
        }
    }
    return files;
}

}  // namespace vexa::runner
