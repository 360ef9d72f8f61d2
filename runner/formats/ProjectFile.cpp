#include "formats/ProjectFile.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <set>
#include <sstream>
#include <system_error>

#include "options/RuleNames.h"
#include "system/files/WholeFile.h"
#include "text/Seconds.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFileName = "vexa-standin.toml";

using Values = std::vector<std::string>;

[[noreturn]] void refuse(const std::string& reason) { throw ProjectFileError(reason); }

const std::string& onlyOne(const Values& values, const char* expected) {
    if (values.size() != 1) refuse(expected);
    return values.front();
}

bool truthOf(const Values& values) {
    constexpr const char* kExpected = "expected true or false";
    const std::string& value = onlyOne(values, kExpected);
    if (value != "true" && value != "false") refuse(kExpected);
    return value == "true";
}

std::chrono::duration<double> timeoutOf(const Values& values) {
    const auto seconds = secondsOf(onlyOne(values, kExpectedSeconds));
    if (!seconds) refuse(kExpectedSeconds);
    return *seconds;
}

std::vector<std::string> rulesOf(const Values& values) {
    std::vector<std::string> rules;
    for (const std::string& name : values) {
        if (name.empty()) continue;  // behind a comma at the end
        if (standin::findRule(name) == nullptr) refuse(noSuchRule(name));
        rules.push_back(name);
    }
    return rules;
}

struct Key {
    const char* name;
    void (*take)(ContractOptions& options, const Values& values);
};

const Key kKeys[] = {
    {"strict", [](ContractOptions& options, const Values& values) { options.strict = truthOf(values); }},
    {"warnings-as-errors",
     [](ContractOptions& options, const Values& values) { options.warningsAsErrors = truthOf(values); }},
    {"suppress", [](ContractOptions& options, const Values& values) { options.suppressed = rulesOf(values); }},
    {"timeout", [](ContractOptions& options, const Values& values) { options.timeout = timeoutOf(values); }},
};

const Key& keyOf(const std::string& name) {
    std::string names;
    for (const Key& key : kKeys) {
        if (name == key.name) return key;
        names += (names.empty() ? "" : ", ") + std::string(key.name);
    }
    refuse("unknown key " + name + "; the keys are " + names);
}

// A section is refused like a key that has the form of its header.
std::string nameOf(const CLI::ConfigItem& item) {
    return item.name == "++" ? '[' + item.parents.back() + ']' : item.fullname();
}

// The reader below wants an array begun and ended on one line, and takes what stands behind a # there for a part of it.
std::string withArraysOnOneLine(const std::string& text) {
    std::string lines;
    bool isQuoted = false;
    bool isComment = false;
    int depth = 0;
    for (const char c : text) {
        if (c == '\n') isQuoted = isComment = false;
        if (c == '"' && !isComment) isQuoted = !isQuoted;
        if (c == '#' && !isQuoted) isComment = true;
        if (isComment) continue;
        if (c == '[' && !isQuoted) ++depth;
        if (c == ']' && !isQuoted) --depth;
        lines += c == '\n' && depth > 0 ? ' ' : c;
    }
    return lines;
}

std::vector<CLI::ConfigItem> itemsOf(const std::string& text) {
    std::istringstream in(withArraysOnOneLine(text));
    return CLI::ConfigTOML().from_config(in);
}

ContractOptions optionsOf(const std::vector<CLI::ConfigItem>& items) {
    ContractOptions options;
    std::set<std::string> given;
    for (const CLI::ConfigItem& item : items) {
        const std::string name = nameOf(item);
        const Key& key = keyOf(name);
        if (!given.insert(name).second) refuse(name + ": given twice");
        try {
            key.take(options, item.inputs);
        } catch (const ProjectFileError& error) {
            refuse(name + ": " + error.what());
        }
    }
    return options;
}

}  // namespace

std::string findProjectFile() {
    std::error_code ignored;
    for (fs::path folder = fs::current_path(ignored); !folder.empty(); folder = folder.parent_path()) {
        const fs::path file = folder / kFileName;
        if (fs::exists(file, ignored) && !fs::is_directory(file, ignored)) return file;
        if (folder == folder.root_path()) break;
    }
    return "";
}

ContractOptions readProjectFile(const std::string& path) {
    try {
        return optionsOf(itemsOf(readInput(path)));
    } catch (const std::system_error& error) {
        throw ProjectFileError(path + ": " + error.code().message());
    } catch (const ProjectFileError& error) {
        throw ProjectFileError(path + ": " + error.what());
    }
}

}  // namespace vexa::runner
