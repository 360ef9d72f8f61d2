#include <cstdio>
#include <memory>
#include <string>

#include "vexa/AddOn.h"
#include "vexautilutil/vexautilutil.h"

using namespace vexa::vexautilutil;

namespace {

constexpr const char* kId = "SLICER";

// [parse]
std::shared_ptr<MacroOptionInterface> parseOption(MacroTokenIterator& current, const MacroTokenIterator& end) {
    static const uint64_t defaultCount = 10;
    static const bool defaultCapped = false;
    const std::string name = *current;
    if (name == "COUNT") return std::make_shared<UInt64MacroOption>(current, end, &defaultCount);
    if (name == "CAPPED") return std::make_shared<BooleanMacroOption>(current, end, &defaultCapped);
    if (name == "TITLE") return std::make_shared<StringMacroOption>(current, end, nullptr);
    if (name == "ZONES") return std::make_shared<SetMacroOption>(current, end, false, nullptr);
    throw MacroCommandError("Unknown option of SLICE: " + name);
}

class Slice : public MacroCommandAbstract {
public:
    explicit Slice(const std::string& options) : MacroCommandAbstract("SLICE") {
        const MacroTokenizer tokens = tokenize(options);  // refers to `options`, which must outlive it
        const MacroTokenIterator end = tokens.end();
        for (MacroTokenIterator current = tokens.begin(); current != end;) {
            if (*current == " ") {
                ++current;  // an option does not skip the blanks before it
            } else {
                addOption(parseOption(current, end));
            }
        }
    }
    void execute() override;
};
// [parse]

// [perform]
struct Settings : MacroOptionPerformerAbstract {
    Settings() : MacroOptionPerformerAbstract(false) {}
    using MacroOptionPerformerAbstract::action;  // keeps the actions that are not overridden

    void action(UInt64MacroOption& option) override { count = option.value(); }
    void action(BooleanMacroOption& option) override { capped = option.value(); }
    void action(StringMacroOption& option) override { title = option.value(); }
    void action(SetMacroOption& option) override { zones = *option.value(); }

    uint64_t count = 10;
    bool capped = false;
    std::string title = "Slices";
    vexa::toolbox::Set zones;
};

void Slice::execute() {
    Settings settings;
    forEachOption(settings);
    std::printf("%s: %llu slices of %s%s\n", settings.title.c_str(), static_cast<unsigned long long>(settings.count),
                settings.zones.toString().c_str(), settings.capped ? ", capped" : "");
}
// [perform]

// [record]
// Records nothing while the host plays back: those commands are already recorded.
void record(const std::string& command) {
    if (VexaUtilMacroIsRecordingActive() == 0 || VexaUtilStateIsProcessingJournal() != 0 ||
        VexaUtilStateIsProcessingLayout() != 0) {
        return;
    }
    if (VexaUtilMacroRecordExtCommand(kId, command.c_str()) != 1) throw MacroCommandError("SLICE was not recorded");
}
// [record]

// [run]
void run(const std::string& text) {
    const std::size_t nameEnd = text.find(' ');
    const std::string name = text.substr(0, nameEnd);
    if (name != "SLICE") throw MacroCommandError("Unknown command " + name + "; known is SLICE");
    Slice slice(nameEnd == std::string::npos ? "" : text.substr(nameEnd));
    slice.execute();
    record(slice.toString());
}
// [run]

// [entry]
// What run() throws becomes the error message of the command.
VexaBoolean execute(const char* text, char** errMsg) {
    return executeCommand([&] { run(text); }, errMsg);
}

constexpr VexaAddOn_s kDescription = {VEXA_ADDON_API_VERSION, kId, "Slices", execute, nullptr};

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s*) { return &kDescription; }
// [entry]
