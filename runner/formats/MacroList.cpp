#include "formats/MacroList.h"

#include <cstddef>
#include <system_error>

#include "system/files/StandardStreams.h"
#include "system/files/WholeFile.h"
#include "text/Lines.h"

namespace vexa::runner {
namespace {

constexpr char kListMark = '@';

bool isBlank(const std::string& line) { return line.find_first_not_of(" \t") == std::string::npos; }

std::vector<std::string> linesIn(const std::string& path, const std::string& name) {
    try {
        return linesOf(readInput(path));
    } catch (const std::system_error& error) {
        throw MacroListError(name + ": cannot be read: " + error.code().message());
    }
}

}  // namespace

std::vector<std::string> readMacroList(const std::string& path) {
    const std::string name = isStandardInput(path) ? kStandardInputName : path;
    std::vector<std::string> files;
    std::size_t number = 0;
    for (std::string& line : linesIn(path, name)) {
        ++number;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (isBlank(line)) continue;
        if (isStandardInput(line)) {
            throw MacroListError(name + ':' + std::to_string(number) + ": expected a file, not the standard input");
        }
        files.push_back(std::move(line));
    }
    if (files.empty()) throw MacroListError(name + ": it names no macro file");
    return files;
}

std::vector<std::string> macroFilesOf(const std::vector<std::string>& arguments) {
    std::vector<std::string> files;
    for (const std::string& argument : arguments) {
        if (isMacroList(argument)) {
            const std::vector<std::string> listed = readMacroList(argument.substr(1));
            files.insert(files.end(), listed.begin(), listed.end());
        } else {
            files.push_back(argument);
        }
    }
    return files;
}

bool isMacroList(const std::string& argument) { return !argument.empty() && argument.front() == kListMark; }

}  // namespace vexa::runner
