// Reads style files. An add-on must get the settings of an accepted file, and a file written from these settings must
// be read back to the same settings. A refusal must have a place in the file and a reason of one line.

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <set>
#include <vector>

#include "Fuzz.h"
#include "SteppedRanges.h"
#include "formats/JsonText.h"
#include "formats/StyleFile.h"
#include "vexautilutil/StyleValue.h"

namespace vexa::fuzz {
namespace {

using Json = nlohmann::ordered_json;
using runner::StyleSetting;
using Settings = std::vector<StyleSetting>;

// JSON may write a digit or a colon as \u003...
bool mayTakeLong(const std::string& text) {
    return mayHaveManyMembers(text) || text.find("\\u003") != std::string::npos;
}

// ---- The add-on's values

std::string textOf(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}
std::string textOf(std::int64_t value) { return std::to_string(value); }
std::string textOf(const std::string& value) { return value; }
std::string textOf(const toolbox::Set& value) { return value.toString(); }

std::string asAddOnsGetIt(std::vector<std::string> path, std::pair<long, long> offsets) {
    vexautilutil::ResultType_e type{};
    GetValueReturnCode_e code{};
    std::string value;
    vexautilutil::getValueAsString(path, offsets.first, offsets.second, type, code, value);
    require(code == GetValueReturnCode_Ok, "a setting has a value", value);
    return value;
}

// Returns a pair of offsets for which no setting of the same path has a value of its own.
std::pair<long, long> unusedOffsets(const Settings& settings, const StyleSetting& setting) {
    std::pair<long, long> offsets;
    const auto isIt = [&](const StyleSetting& one) { return one.path == setting.path && one.offsets == offsets; };
    while (std::any_of(settings.begin(), settings.end(), isIt)) ++offsets.first;
    return offsets;
}

void requireGiven(const Settings& settings) {
    standin::Host host;
    host.setKeepsCalls(false);
    runner::giveStyles(host, settings);
    for (const StyleSetting& setting : settings) {
        const std::string given =
            asAddOnsGetIt(setting.path, setting.offsets ? *setting.offsets : unusedOffsets(settings, setting));
        const std::string expected = std::visit([](const auto& value) { return textOf(value); }, setting.value);
        require(given == expected, "a setting has its value", given);
    }
}

// ---- The file written from the settings

Json written(double value) { return {{"$double", value}}; }
Json written(std::int64_t value) { return value; }
Json written(const std::string& value) { return value; }
Json written(const toolbox::Set& value) { return {{"$set", value.toString()}}; }

std::string written(const Settings& settings) {
    Json file = Json::object();
    for (const StyleSetting& setting : settings) {
        Json* place = &file;
        for (const std::string& keyword : setting.path) place = &(*place)[keyword];
        const Json value = std::visit([](const auto& it) { return written(it); }, setting.value);
        const bool hasOffsets = std::any_of(settings.begin(), settings.end(), [&](const StyleSetting& one) {
            return one.path == setting.path && one.offsets;
        });
        if (setting.offsets) {
            const auto [offset1, offset2] = *setting.offsets;
            (*place)["$offsets"].push_back({{"offset1", offset1}, {"offset2", offset2}, {"value", value}});
        } else if (hasOffsets) {
            (*place)["$value"] = value;
        } else {
            *place = value;
        }
    }
    return file.dump();
}

bool isSame(const StyleSetting& a, const StyleSetting& b) {
    return a.path == b.path && a.offsets == b.offsets && a.value == b.value;
}

void requireReadBack(const Settings& settings) {
    const std::string file = written(settings);
    const Settings again = runner::parseStyles(file);
    require(std::equal(settings.begin(), settings.end(), again.begin(), again.end(), isSame),
            "settings are read back unchanged", file);
}

void requireReason(const runner::JsonError& error, const std::string& text) {
    const std::string reason = error.what();
    require(error.at <= text.size(), "what is wrong lies in the file", reason);
    require(!reason.empty() && reason.find_first_of("\r\n") == std::string::npos, "a reason is one line", reason);
    require(reason.size() < 1000, "a reason is short", reason);
}

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    const std::string text = textOf(data, size);
    if (mayTakeLong(text)) return 0;
    Settings settings;
    try {
        settings = vexa::runner::parseStyles(text);
    } catch (const vexa::runner::JsonError& error) {
        requireReason(error, text);
        return 0;
    }
    requireGiven(settings);
    requireReadBack(settings);
    return 0;
}
