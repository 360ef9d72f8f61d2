// An add-on whose commands change the file that their option names: `SAVE FILE = '/folder/outside-of-the-check/file'`.
// It changes no path without that folder, because files must survive on systems that cannot confine the add-on.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "vexa/AddOn.h"

namespace {

constexpr const char* kFolder = "/outside-of-the-check/";

struct Change {
    const char* command;
    void (*make)(const std::string& path);
};

const Change changes[] = {
    {"SAVE ", [](const std::string& path) { std::ofstream(path) << "written"; }},
    {"OPEN ",
     [](const std::string& path) {
         const int descriptor = open(path.c_str(), O_WRONLY | O_TRUNC);
         if (descriptor >= 0) close(descriptor);
     }},
    {"CUT ",
     [](const std::string& path) {
         if (truncate(path.c_str(), 0) != 0) return;
     }},
    {"DROP ", [](const std::string& path) { unlink(path.c_str()); }},
    {"MAKE ", [](const std::string& path) { mkdir((path + ".folder").c_str(), 0777); }},
    {"MOVE ", [](const std::string& path) { std::rename(path.c_str(), (path + ".moved").c_str()); }},
    {"LINK ",
     [](const std::string& path) {
         std::error_code ignored;
         std::filesystem::create_symlink("target", path + ".link", ignored);
     }},
    // By another program, whose calls nobody counts.
    {"SHELL ",
     [](const std::string& path) {
         if (path.find_first_not_of("/abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789.-_") !=
             std::string::npos) {
             return;
         }
         if (std::system(("{ echo written > " + path + "; } 2> /dev/null").c_str()) != 0) return;
     }},
    {"TEMPORARY ",
     [](const std::string&) {
         const char* const folder = std::getenv("TMPDIR");
         if (folder == nullptr || !(std::ofstream(std::string(folder) + "/temporary") << "written")) std::abort();
     }},
};

std::string between(const std::string& text, char quote) {
    const std::size_t begin = text.find(quote) + 1;
    return begin == 0 ? "" : text.substr(begin, text.rfind(quote) - begin);
}

VexaBoolean execute(const char* command, char**) {
    const std::string text = command;
    for (const Change& change : changes) {
        const std::string path = between(text, '\'');
        if (text.find(change.command) == 0 && path.find(kFolder) != std::string::npos) change.make(path);
    }
    return 1;
}

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "WRITER", nullptr, execute, nullptr};
    return &description;
}
