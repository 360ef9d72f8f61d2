#include <cstdio>
#include <string>

#include "vexa/AddOn.h"
#include "vexautilutil/ExecuteCommand.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"

namespace {

constexpr const char* kId = "MESHER";

// [open-quote]
// getStringValue() would wait forever for a missing closing quote.
bool hasOpenQuote(const std::string& text) {
    char open = '\0';
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (open == '\0') {
            if (text[i] == '\'' || text[i] == '"') open = text[i];
        } else if (text[i] == '\\') {
            ++i;
        } else if (text[i] == open) {
            open = '\0';
        }
    }
    return open != '\0';
}
// [open-quote]

// [escaped]
// Escapes quotes and backslashes, so that getStringValue() reads the same text back.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '\'' || c == '\\') result += '\\';
        result += c;
    }
    return result;
}
// [escaped]

// [read]
// CYLINDER NAME = 'wake' RADIUS = 0.5 POINTS = 64 CLOSED = T ZONES = [1-3]
class MeshProcessor : public vexa::vexautilutil::MacroCommandProcessorAbstract {
public:
    bool processCommand() override {
        if (m_hasOpenQuote) return refuse("Missing closing quote");
        std::string word;
        std::string option;
        if (!getCommand(word) || word != "CYLINDER") return refuse("Expected CYLINDER, but found " + word);
        while (getNextName(option)) {
            if (!readValue(option)) return false;
            option.clear();
        }
        if (!option.empty()) return refuse("Expected = and a value after " + option);

        std::printf("%s: radius %g, %d points%s, in %s\n", m_name.c_str(), m_radius, static_cast<int>(m_points),
                    m_closed ? ", closed" : "", m_zones.toString().c_str());
        return recordMacroCommand(kId) || refuse("CYLINDER was not recorded");
    }
    // [read]

    // [write]
    bool composeCommandString(std::string& command) const override {
        command = "CYLINDER " + toNameValueAssignment("NAME", escaped(m_name)) +
                  toNameValueAssignment("RADIUS", m_radius) + toNameValueAssignment("POINTS", m_points) +
                  toNameValueAssignment("CLOSED", m_closed);
        if (!m_zones.isEmpty()) command += toNameValueAssignment("ZONES", m_zones);  // last: no blank follows it
        return true;
    }
    // [write]

    // [parse]
    bool parseCommandString(const char* text, char** errMsg) override {
        m_hasOpenQuote = hasOpenQuote(text);
        return MacroCommandProcessorAbstract::parseCommandString(text, errMsg);
    }
    // [parse]

private:
    // [values]
    bool readValue(const std::string& option) {
        if (option == "NAME") return getStringValue(m_name, true) || refuse("Expected a quoted text for NAME");
        if (option == "RADIUS") return getDoubleValue(m_radius);
        if (option == "POINTS") return readPoints();
        if (option == "CLOSED") return getBooleanValue(m_closed) || refuse("Expected T or F for CLOSED");
        if (option == "ZONES") return getSetValue(m_zones);
        return refuse("Unknown option " + option);
    }

    bool readPoints() {
        if (!getInt64Value(m_points)) return false;  // the getter has stored a message
        return (m_points >= 3 && m_points <= 1000) || refuse("POINTS must be from 3 to 1000");
    }

    bool refuse(const std::string& why) {
        depositErrorMessage("Error: " + why);
        return false;
    }
    // [values]

    std::string m_name = "cylinder";
    double m_radius = 1.0;
    int64_t m_points = 32;
    char m_closed = 0;
    vexa::toolbox::Set m_zones;
    bool m_hasOpenQuote = false;
};

// [entry]
constexpr VexaAddOn_s kDescription = {VEXA_ADDON_API_VERSION, kId, "Makes meshes",
                                      vexa::vexautilutil::executeCommand<MeshProcessor>, nullptr};

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) { return &kDescription; }
// [entry]
