#include "commands/Commands.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "formats/StyleFile.h"
#include "options/CommonOptions.h"
#include "options/UsageError.h"
#include "terminal/Console.h"
#include "text/Joined.h"
#include "vexastandin/Host.h"
#include "vexautilutil/StyleValue.h"

namespace vexa::runner {
namespace {

constexpr const char* kFooter = R"(Style file: JSON with nested keywords, at most six, in any letter case:
  {"FIELDMAP": {"MESH": {"LINETHICKNESS": 0.4, "COLOR": 3}},
   "ACTIVEFIELDMAPS": [1, 2, "5-7"],
   "TITLE": {"TEXT": "Wake"},
   "SIZE": {"$offsets": [{"offset1": 1, "offset2": 0, "value": 2.5}],
            "$value": 1.5}}
A number with a point or an exponent is a double, and so is {"$double": 3}. An
array is a set, and so is {"$set": "[1-2,5-7]"}. "$offsets" has values for pairs
of offsets, and "$value" is the value for all other pairs.
The last keyword decides whether add-ons expect an integer, a text or a set. A
value of another kind is refused.

Example:
  vexa-standin style --style look.json FIELDMAP MESH LINETHICKNESS

Exit status:
  0  the value was printed
  2  wrong usage, the style file is refused, or the setting has no value)";

// In the order of vexautilutil::ResultType_e.
constexpr const char* kKindNames[] = {"double", "integer", "set", "text"};

struct StyleOptions {
    std::optional<std::string> style;
    std::vector<std::string> path;
    long offset1 = 0;
    long offset2 = 0;
};

std::string reasonOf(GetValueReturnCode_e code, const StyleOptions& options) {
    switch (code) {
        case GetValueReturnCode_UnknownPath: return "unknown: the style file has no such setting";
        case GetValueReturnCode_OtherType: return "its value has another type than the query expects";
        default:
            return "no value: the path is too short, or there is none for the offsets " +
                   std::to_string(options.offset1) + " and " + std::to_string(options.offset2);
    }
}

ExitStatus_e showStyle(StyleOptions& options) {
    standin::Host host;
    host.setKeepsCalls(false);
    if (!loadStyles(host, *options.style)) return ExitStatus_e::BadUsageOrInput;
    vexautilutil::ResultType_e type{};
    GetValueReturnCode_e code{};
    std::string value;
    vexautilutil::getValueAsString(options.path, options.offset1, options.offset2, type, code, value);
    if (code != GetValueReturnCode_Ok) {
        tell(joined(options.path, " "), reasonOf(code, options));
        return ExitStatus_e::BadUsageOrInput;
    }
    print(std::string(kKindNames[type]) + ' ' + value + '\n');
    return ExitStatus_e::AllWell;
}

}  // namespace

Command styleCommand() {
    const auto options = std::make_shared<StyleOptions>();
    Command command{"style", "Print the value that add-ons get for a setting of a style file", kFooter};
    command.add(styleOption(options->style).require());
    command.add(argument("PATH", "The keywords of the setting, outermost first, each as one argument", &options->path)
                    .require());
    command.add(option({"--offset1"}, "N", "The first index of the query (default 0)", &options->offset1));
    command.add(option({"--offset2"}, "N", "The second index of the query (default 0)", &options->offset2));
    command.check = [options] {
        // The library passes only six keywords to the host, but the last of all keywords decides the kind.
        if (options->path.size() > standin::kMostStyleKeywords) throw UsageError("PATH: expected at most six keywords");
    };
    command.run = [options] { return showStyle(*options); };
    return command;
}

}  // namespace vexa::runner
