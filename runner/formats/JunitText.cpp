#include "formats/JunitText.h"

#include <algorithm>
#include <chrono>

#include "text/Printable.h"
#include "text/Seconds.h"

namespace vexa::runner {
namespace {

std::string escaped(const std::string& text) {
    std::string xml;
    for (const char c : printable(text)) {
        switch (c) {
            case '\t': xml += "&#9;"; break;  // otherwise a tab or line feed in an attribute is read as a blank
            case '&': xml += "&amp;"; break;
            case '<': xml += "&lt;"; break;
            case '>': xml += "&gt;"; break;
            case '"': xml += "&quot;"; break;
            case '\n': xml += "&#10;"; break;
            default: xml += c;
        }
    }
    return xml;
}

std::string attribute(const char* name, const std::string& value) {
    return std::string(" ") + name + "=\"" + escaped(value) + '"';
}

std::string element(const char* name, const std::string& attributes, const std::string& text) {
    return std::string("      <") + name + attributes + '>' + escaped(text) + "</" + name + ">\n";
}

std::string timeAttribute(double seconds) {
    return attribute("time", decimalSeconds(std::chrono::duration<double>(seconds), 3));
}

std::string outcomeElement(const JunitCase& test) {
    const std::string message = attribute("message", test.message);
    const std::string type = attribute("type", test.type);
    switch (test.outcome) {
        case JunitOutcome_e::Passed: return "";
        case JunitOutcome_e::Skipped: return "      <skipped" + message + "/>\n";
        case JunitOutcome_e::Remarked: return element("system-out", "", test.text);
        case JunitOutcome_e::Failure: return element("failure", message + type, test.text);
        case JunitOutcome_e::Error: break;
    }
    return element("error", message + type, test.text);
}

std::string counts(const std::vector<JunitCase>& cases) {
    const auto countOf = [&](JunitOutcome_e outcome) {
        return std::to_string(
            std::count_if(cases.begin(), cases.end(), [&](const JunitCase& test) { return test.outcome == outcome; }));
    };
    double seconds = 0;
    for (const JunitCase& test : cases) seconds += test.seconds;
    return attribute("tests", std::to_string(cases.size())) + attribute("failures", countOf(JunitOutcome_e::Failure)) +
           attribute("errors", countOf(JunitOutcome_e::Error)) +
           attribute("skipped", countOf(JunitOutcome_e::Skipped)) + timeAttribute(seconds);
}

std::string testCase(const JunitCase& test) {
    const std::string outcome = outcomeElement(test);
    return "    <testcase" + attribute("classname", test.className) + attribute("name", test.name) +
           timeAttribute(test.seconds) + (outcome.empty() ? "/>\n" : ">\n" + outcome + "    </testcase>\n");
}

}  // namespace

std::string junitText(const std::string& suite, const std::vector<std::pair<std::string, std::string>>& properties,
                      const std::vector<JunitCase>& cases) {
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n  <testsuite" +
                      attribute("name", suite) + counts(cases) + ">\n    <properties>\n";
    for (const auto& [name, value] : properties) {
        xml += "      <property" + attribute("name", name) + attribute("value", value) + "/>\n";
    }
    xml += "    </properties>\n";
    for (const JunitCase& test : cases) xml += testCase(test);
    return xml + "  </testsuite>\n</testsuites>\n";
}

}  // namespace vexa::runner
