#include "MessageText.h"

#include <regex>
#include <sstream>

namespace vexa::e2e {

std::string withoutStack(const std::string& text) {
    std::istringstream in(text);
    std::string rest;
    bool isStack = false;
    for (std::string line; std::getline(in, line);) {
        isStack =
            line.rfind("    stack:", 0) == 0 || line.rfind("    at: ", 0) == 0 || line.rfind("    stack of ", 0) == 0 ||
            line == "    hint:  Compile the add-on with -g to see the lines of its source." ||
            line.find(" no code of an add-on") != std::string::npos || (isStack && line.rfind("           ", 0) == 0);
        if (!isStack) rest += line + '\n';
    }
    return rest;
}

std::string withoutDebugLines(const std::string& text) {
    return std::regex_replace(text, std::regex("    debug: [^\n]*\n"), "");
}

std::string withoutSources(const std::string& text) {
    static const std::regex sources("           at [^\n]*\n|vexa-standin: compile the add-on with -g [^\n]*\n");
    return std::regex_replace(text, sources, "");
}

}  // namespace vexa::e2e
