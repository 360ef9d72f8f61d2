#pragma once

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>

namespace vexa::e2e {

/// addons/CrashingAddOn.cpp by each compiler, without and with optimization, without and with debug information.
inline const char* const kCrashingAddOns[] = {CRASHING_ADDONS};

/// Returns the line of the add-on's source with the comment `[MARK]`.
inline std::size_t lineOf(const std::string& mark) {
    std::ifstream source(CRASHING_SOURCE);
    std::string line;
    for (std::size_t number = 1; std::getline(source, line); ++number) {
        if (line.find("// [" + mark + ']') != std::string::npos) return number;
    }
    return 0;
}

inline bool hasLines(const std::string& addOn) { return addOn.find("-lines.so") != std::string::npos; }

inline std::string addOnWithLines() {
    return *std::find_if(std::begin(kCrashingAddOns), std::end(kCrashingAddOns), hasLines);
}

inline bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

/// Returns how a place in the add-on looks in a stack.
inline std::string placeText(const std::string& addOn, const std::string& mark, const std::string& function) {
    if (!hasLines(addOn)) return "crashing::" + function + "+0x";
    return "CrashingAddOn.cpp:" + std::to_string(lineOf(mark)) + ", in crashing::" + function;
}

/// Returns the line of a message that names the innermost place in the add-on; empty if there is none.
inline std::string ownPlaceIn(const std::string& text) {
    const std::size_t at = text.find("    at:    ");
    return at == std::string::npos ? "" : text.substr(at, text.find('\n', at) + 1 - at);
}

/// Returns the name of a test for an add-on.
inline std::string testNameOf(const std::string& addOn) {
    std::string name = std::filesystem::path(addOn).stem().string();
    name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
    return name;
}

}  // namespace vexa::e2e
