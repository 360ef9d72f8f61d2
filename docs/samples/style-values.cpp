#include <cstdio>
#include <string>
#include <vector>

#include "vexa/AddOn.h"
#include "vexa/Scanner.h"
#include "vexa/toolbox/Set.h"
#include "vexautilutil/ExecuteCommand.h"
#include "vexautilutil/MacroCommandError.h"
#include "vexautilutil/MacroCommandProcessorAbstract.h"
#include "vexautilutil/StyleValue.h"

using namespace vexa::vexautilutil;

namespace {

constexpr const char* kId = "STYLIST";

// [results]
std::string reasonOf(GetValueReturnCode_e code) {
    switch (code) {
        case GetValueReturnCode_OtherType: return "has a value of another kind";
        case GetValueReturnCode_UnknownPath: return "is not a setting of this host";
        default: return "has no value for this field map";
    }
}
// [results]

// [ask]
// Returns the value of a style setting of one field map as text.
std::string styleText(std::vector<std::string> path, long fieldMap) {
    ResultType_e kind{};
    GetValueReturnCode_e code{};
    std::string text;
    getValueAsString(path, fieldMap, 0, kind, code, text);
    if (code != GetValueReturnCode_Ok) throw MacroCommandError(path.back() + ' ' + reasonOf(code));
    return text;
}
// [ask]

// [use]
double styleNumber(const std::vector<std::string>& path, long fieldMap) {
    vexa::Scanner scanner;
    scanner.reset(styleText(path, fieldMap));
    if (!scanner.hasNextDoubleToken()) throw MacroCommandError(path.back() + " is not a number");
    return scanner.nextDoubleToken();
}

void describe(long fieldMap) {
    const std::string name = styleText({"FieldMap", "Name"}, fieldMap);
    const double thickness = styleNumber({"FieldMap", "Mesh", "LineThickness"}, fieldMap);
    vexa::toolbox::Set active;
    active.assign(styleText({"FieldMap", "ActiveFieldMaps"}, 0));
    const char* const state = active.contains(fieldMap) ? "shown" : "hidden";
    std::printf("%s: lines of %g, %s\n", name.c_str(), thickness, state);
}
// [use]

// DESCRIBE MAP = 1
class StyleProcessor : public MacroCommandProcessorAbstract {
public:
    bool processCommand() override {
        std::string word;
        std::string option;
        depositErrorMessage("Error: Expected DESCRIBE MAP = number");  // a getter that fails replaces it
        if (!getCommand(word) || word != "DESCRIBE") return false;
        if (!getNextName(option) || option != "MAP" || !getInt64Value(m_fieldMap)) return false;
        describe(static_cast<long>(m_fieldMap));
        if (!recordMacroCommand(kId)) throw MacroCommandError("The host did not record DESCRIBE");
        return true;
    }

    bool composeCommandString(std::string& command) const override {
        command = "DESCRIBE " + toNameValueAssignment("MAP", m_fieldMap);
        return true;
    }

private:
    int64_t m_fieldMap = 1;
};

constexpr VexaAddOn_s kDescription = {VEXA_ADDON_API_VERSION, kId, "Describes field maps",
                                      executeCommand<StyleProcessor>, nullptr};

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) { return &kDescription; }
