#include "formats/ProjectFile.h"

#include <toml++/toml.h>

#include <filesystem>
#include <system_error>

#include "options/Refusals.h"
#include "options/UsageError.h"
#include "system/files/WholeFile.h"
#include "text/Printable.h"
#include "text/Seconds.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void refuse(const toml::source_region& place, const std::string& reason) {
    throw UsageError(*place.path + ':' + std::to_string(place.begin.line) + ": " + printableLine(reason));
}

struct Setting {
    std::string name;
    const toml::node& value;

    [[noreturn]] void refuse(const toml::node& part, const std::string& reason) const {
        runner::refuse(part.source(), name + ": " + reason);
    }
};

bool truthOf(const Setting& setting) {
    const auto truth = setting.value.value_exact<bool>();
    if (!truth) setting.refuse(setting.value, "expected true or false");
    return *truth;
}

std::chrono::duration<double> timeoutOf(const Setting& setting) {
    const auto seconds = secondsOf(setting.value.is_number() ? setting.value.value_or(0.0) : 0.0);
    if (!seconds) setting.refuse(setting.value, kExpectedSeconds);
    return *seconds;
}

std::string ruleOf(const Setting& setting, const toml::node& value) {
    const auto name = value.value_exact<std::string>();
    if (!name) setting.refuse(value, "expected the name of a rule, or an array of them");
    if (standin::findRule(*name) == nullptr) setting.refuse(value, noSuchRule(*name));
    return *name;
}

std::vector<std::string> rulesOf(const Setting& setting) {
    const toml::array* const values = setting.value.as_array();
    if (values == nullptr) return {ruleOf(setting, setting.value)};
    std::vector<std::string> rules;
    for (const toml::node& value : *values) rules.push_back(ruleOf(setting, value));
    return rules;
}

// The path is relative to the folder of the project file.
std::string hostOf(const Setting& setting, const std::string& projectFile) {
    const auto file = setting.value.value_exact<std::string>();
    if (!file || file->empty()) setting.refuse(setting.value, "expected the name of a facts file");
    return (fs::path(projectFile).parent_path() / *file).lexically_normal();
}

ContractOptions optionsOf(const toml::table& file, const std::string& path) {
    ContractOptions options;
    for (const auto& [key, value] : file) {
        const Setting setting{std::string(key.str()), value};
        if (key == "strict") {
            options.strict = truthOf(setting);
        } else if (key == "warnings-as-errors") {
            options.warningsAsErrors = truthOf(setting);
        } else if (key == "suppress") {
            options.suppressed = rulesOf(setting);
        } else if (key == "timeout") {
            options.timeout = timeoutOf(setting);
        } else if (key == "host") {
            options.host = hostOf(setting, path);
        } else {
            refuse(key.source(), "unknown key " + setting.name +
                                     "; the keys are strict, warnings-as-errors, suppress, timeout, host");
        }
    }
    return options;
}

}  // namespace

std::string findProjectFile() {
    std::error_code ignored;
    for (fs::path folder = fs::current_path(ignored); !folder.empty(); folder = folder.parent_path()) {
        const fs::path file = folder / kProjectFile;
        if (fs::exists(file, ignored) && !fs::is_directory(file, ignored)) return file;
        if (folder == folder.root_path()) break;
    }
    return "";
}

ContractOptions readProjectFile(const std::string& path) {
    try {
        return projectIn(readInput(path), path);
    } catch (const std::system_error& error) {
        throw UsageError(path + ": " + error.code().message());
    }
}

ContractOptions projectIn(const std::string& text, const std::string& path) {
    try {
        return optionsOf(toml::parse(text, path), path);
    } catch (const toml::parse_error& error) {
        refuse(error.source(), std::string(error.description()));
    }
}

}  // namespace vexa::runner
