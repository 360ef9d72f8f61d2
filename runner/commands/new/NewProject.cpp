#include "commands/new/NewProject.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "system/Descriptor.h"
#include "system/files/OutputTarget.h"
#include "text/StartsWith.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

struct TemplateFile {
    const char* path;  // within the project
    std::string_view text;
};

#include "ProjectFiles.inc"

// The start of the paths of files for editors.
constexpr std::string_view kForEditors[] = {".clangd", ".vscode/", "editors/"};

constexpr std::string_view kScript = "#!";  // the start of a program that a shell runs
constexpr mode_t kFile = 0666;
constexpr mode_t kProgram = 0777;

// Names that CMake reserves for its own targets, with any generator. project(CMAKE) would overwrite variables of CMake.
constexpr std::string_view kTakenNames[] = {
    "all",     "ALL_BUILD",      "clean",      "edit_cache",    "help",      "install", "INSTALL",    "package",
    "PACKAGE", "package_source", "preinstall", "rebuild_cache", "RUN_TESTS", "test",    "ZERO_CHECK", "CMAKE"};

// ASCII only, in every locale.
bool isLower(char c) { return c >= 'a' && c <= 'z'; }
bool isUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool isLetter(char c) { return isLower(c) || isUpper(c); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isNameCharacter(char c) { return isLetter(c) || isDigit(c) || c == '_' || c == '-'; }
bool isControl(char c) { return (c >= 0 && c < ' ') || c == '\x7F'; }
bool isTargetCharacter(char c) { return isNameCharacter(c) || c == '.' || c == '+'; }
char upper(char c) { return isLower(c) ? static_cast<char>(c - 'a' + 'A') : c; }

[[noreturn]] void refuse(const fs::path& path, const std::string& why) {
    throw OutputError(path.string() + ": " + why);
}

void refuseAsTarget(const fs::path& folder, const std::string& name) {
    const std::string other = "; choose another name for the folder";
    if (std::find(std::begin(kTakenNames), std::end(kTakenNames), name) != std::end(kTakenNames)) {
        refuse(folder, "CMake reserves the name '" + name + "'" + other);
    }
    if (!std::all_of(name.begin(), name.end(), isTargetCharacter)) {
        refuse(folder,
               "'" + name + "' cannot be a CMake target; expected letters, digits, '_', '-', '.' and '+'" + other);
    }
}

std::string nameFor(const fs::path& folder) {
    std::string name = fs::absolute(folder / "").lexically_normal().parent_path().filename().string();
    refuseAsTarget(folder, name);
    return name.empty() || !isLetter(name.front()) ? "addon-" + name : name;
}

std::string idFor(const std::string& name) {
    std::string id;
    for (const char c : name) {
        if (isLetter(c) || isDigit(c)) id += upper(c);
    }
    return id;
}

std::string titleFor(std::string name) {
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '_' || c == '-'; }, ' ');
    name.front() = upper(name.front());
    return name;
}

// Escapes text for a C++ string literal.
std::string escaped(const std::string& text) {
    std::string literal;
    for (const char c : text) {
        if (c == '"' || c == '\\') literal += '\\';
        literal += c;
    }
    return literal;
}

bool isForEditors(const TemplateFile& file) {
    return std::any_of(std::begin(kForEditors), std::end(kForEditors),
                       [&](std::string_view start) { return startsWith(file.path, start); });
}

// Replaces the placeholders of the template.
std::string filled(std::string_view text, const ProjectNames& names) {
    const std::pair<std::string_view, std::string> values[] = {{"@NAME@", names.name},
                                                               {"@ID@", names.id},
                                                               {"@TITLE@", names.title},
                                                               {"@TITLE_LITERAL@", escaped(names.title)}};
    std::string result;
    while (!text.empty()) {
        const auto value = std::find_if(std::begin(values), std::end(values), [&](const auto& candidate) {
            return text.substr(0, candidate.first.size()) == candidate.first;
        });
        result += value == std::end(values) ? std::string(1, text.front()) : value->second;
        text.remove_prefix(value == std::end(values) ? 1 : value->first.size());
    }
    return result;
}

// The created files and folders. The destructor removes them unless keep() was called.
class MadePaths {
public:
    MadePaths() = default;
    MadePaths(const MadePaths&) = delete;
    MadePaths& operator=(const MadePaths&) = delete;
    ~MadePaths() {
        std::error_code ignored;
        for (auto path = m_paths.rbegin(); path != m_paths.rend(); ++path) fs::remove(*path, ignored);
    }

    // Creates \p folder, and missing folders above it.
    void makeFolder(const fs::path& folder) {
        std::error_code error;
        if (fs::is_directory(folder, error)) return;
        if (folder.has_relative_path() && folder.has_parent_path()) makeFolder(folder.parent_path());
        const bool isMade = fs::create_directory(folder, error);
        if (!isMade) refuseOutput(folder, (error ? error : std::make_error_code(std::errc::file_exists)).message());
        m_paths.push_back(folder);
    }
    void makeFile(const std::string& path, const std::string& text) {
        const bool isProgram = text.substr(0, kScript.size()) == kScript;
        Descriptor file(open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, isProgram ? kProgram : kFile));
        if (!file.isOpen()) refuseOutput(path);
        m_paths.emplace_back(path);
        if (!writeAll(file.get(), text) || !file.close()) refuseOutput(path);
    }
    void keep() { m_paths.clear(); }

private:
    std::vector<fs::path> m_paths;
};

void refuseWhatIsThere(const fs::path& folder) {
    std::error_code error;
    const fs::file_status status = fs::status(folder, error);
    if (!fs::exists(status)) return;
    if (!fs::is_directory(status)) refuse(folder, "it exists and is not a folder");
    const bool isEmpty = fs::is_empty(folder, error);
    if (error) refuse(folder, "cannot be read: " + error.message());
    if (!isEmpty) refuse(folder, "it exists and is not empty");
}

}  // namespace

ProjectNames namesFor(const std::string& folder) {
    const std::string name = nameFor(folder);
    return {name, idFor(name), titleFor(name)};
}

std::string whyNoId(const std::string& id) {
    const bool isId = !id.empty() && isLetter(id.front()) && std::all_of(id.begin(), id.end(), isNameCharacter);
    return isId ? "" : "expected an id: a letter, then letters, digits, '_' and '-'";
}

std::string whyNoTitle(const std::string& title) {
    const bool isLine = !title.empty() && std::none_of(title.begin(), title.end(), isControl);
    return isLine ? "" : "expected a title: a line of text";
}

void writeProject(const std::string& folder, const ProjectNames& names, EditorFiles_e editorFiles) {
    refuseWhatIsThere(folder);
    MadePaths made;
    for (const TemplateFile& file : kTemplateFiles) {
        if (editorFiles == EditorFiles_e::LeftOut && isForEditors(file)) continue;
        const fs::path path = fs::path(folder) / file.path;
        made.makeFolder(path.parent_path());
        made.makeFile(path, filled(file.text, names));
    }
    made.keep();
}

}  // namespace vexa::runner
