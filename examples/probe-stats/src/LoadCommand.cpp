#include "LoadCommand.h"

#include <map>
#include <memory>
#include <utility>

#include "ProbeError.h"
#include "vexautilutil/BooleanMacroOption.h"
#include "vexautilutil/MacroCommandError.h"
#include "vexautilutil/MacroOptionPerformer.h"
#include "vexautilutil/SetMacroOption.h"
#include "vexautilutil/StringMacroOption.h"
#include "vexautilutil/UInt64MacroOption.h"

namespace probestats {
namespace {

using vexa::vexautilutil::BooleanMacroOption;
using vexa::vexautilutil::MacroCommandError;
using vexa::vexautilutil::MacroOptionInterface;
using vexa::vexautilutil::MacroOptionPerformerAbstract;
using vexa::vexautilutil::MacroTokenIterator;
using vexa::vexautilutil::MacroTokenizer;
using vexa::vexautilutil::SetMacroOption;
using vexa::vexautilutil::StringMacroOption;
using vexa::vexautilutil::UInt64MacroOption;

constexpr const char* kName = "LOAD";
constexpr const char* kBlank = " ";
constexpr bool kHeaderDefault = false;
constexpr uint64_t kSkipRowsDefault = 0;

using OptionPointer = std::shared_ptr<MacroOptionInterface>;
using OptionReader = OptionPointer (*)(MacroTokenIterator& current, const MacroTokenIterator& end);
using OptionReaders = std::map<std::string, OptionReader>;

OptionPointer readColumns(MacroTokenIterator& current, const MacroTokenIterator& end) {
    return std::make_shared<SetMacroOption>(current, end, false, nullptr);
}

OptionPointer readFile(MacroTokenIterator& current, const MacroTokenIterator& end) {
    return std::make_shared<StringMacroOption>(current, end, nullptr);
}

OptionPointer readHeader(MacroTokenIterator& current, const MacroTokenIterator& end) {
    return std::make_shared<BooleanMacroOption>(current, end, &kHeaderDefault);
}

OptionPointer readSkipRows(MacroTokenIterator& current, const MacroTokenIterator& end) {
    return std::make_shared<UInt64MacroOption>(current, end, &kSkipRowsDefault);
}

OptionPointer readNumber(MacroTokenIterator& current, const MacroTokenIterator& end) {
    return std::make_shared<UInt64MacroOption>(current, end, nullptr);
}

OptionReaders optionReaders() {
    return {{"COLUMNS", readColumns},   {"FILE", readFile},         {"HEADER", readHeader},
            {"SAMPLERATE", readNumber}, {"SKIPROWS", readSkipRows}, {"TIMECOLUMN", readNumber}};
}

std::string unknownOption(const std::string& name, const OptionReaders& readers) {
    std::string names;
    for (const auto& [known, reader] : readers) names += (names.empty() ? "" : ", ") + known;
    return "Unknown option of " + std::string(kName) + ": " + name + "; known are " + names;
}

// Checks the name before it reads the option, because the name decides the type.
OptionPointer readOption(MacroTokenIterator& current, const MacroTokenIterator& end, const OptionReaders& readers) {
    const auto reader = readers.find(*current);
    if (reader == readers.end()) throw MacroCommandError(unknownOption(*current, readers));
    OptionPointer option = reader->second(current, end);
    // A text cannot contain its own quotes, so the text after such a quote is not an option.
    if (current != end && *current != kBlank) {
        throw MacroCommandError("Expected a blank after the value of " + option->name() + ", but found " + *current);
    }
    return option;
}

void skipBlanks(MacroTokenIterator& current, const MacroTokenIterator& end) {
    while (current != end && *current == kBlank) ++current;
}

// Copies each option to the request. Only numbers need their names, because there are several options of that type.
class RequestWriter : public MacroOptionPerformerAbstract {
public:
    explicit RequestWriter(ProbeFileRequest& request) : MacroOptionPerformerAbstract(false), m_request(request) {}

    void action(BooleanMacroOption& option) override { m_request.hasHeader = option.value(); }
    void action(StringMacroOption& option) override {
        m_request.fileName = option.value();
        if (m_request.fileName.empty()) throw ProbeError("Empty text for command option: " + option.name());
    }
    void action(SetMacroOption& option) override {
        m_request.columns = *option.value();
        if (m_request.columns->isEmpty()) throw ProbeError("Empty set for command option: " + option.name());
    }
    void action(UInt64MacroOption& option) override {
        if (option.name() == "SKIPROWS") m_request.skipRows = option.value();
        if (option.name() == "TIMECOLUMN") m_request.timeColumn = option.value();
        if (option.name() == "SAMPLERATE") m_request.sampleRate = static_cast<double>(option.value());
    }

private:
    ProbeFileRequest& m_request;
};

}  // namespace

LoadCommand::LoadCommand(const std::string& text) : MacroCommandAbstract(kName) {
    const OptionReaders readers = optionReaders();
    const MacroTokenizer tokens = tokenize(text);
    MacroTokenIterator current = tokens.begin();
    const MacroTokenIterator end = tokens.end();
    for (skipBlanks(current, end); current != end; skipBlanks(current, end)) {
        addOption(readOption(current, end, readers));
    }
}

ProbeFileRequest LoadCommand::request() {
    ProbeFileRequest request;
    RequestWriter writer(request);
    forEachOption(writer);
    if (request.fileName.empty()) throw ProbeError("LOAD needs the option FILE");
    if (request.sampleRate && request.timeColumn) throw ProbeError("SAMPLERATE and TIMECOLUMN exclude each other");
    if (request.sampleRate == 0.0) throw ProbeError("SAMPLERATE must be above 0");
    return request;
}

void LoadCommand::execute() { m_data = readProbeFile(request()); }

}  // namespace probestats
