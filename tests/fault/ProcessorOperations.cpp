// The operations of command processors.
#include <stdexcept>

#include "AllocationFaults.h"
#include "SparingHost.h"
#include "library/processor/ScriptedProcessor.h"
#include "support/GlobalLocale.h"

namespace vexa::tests {
namespace {

using namespace vexautilutil;
using Processor = MacroCommandProcessorAbstract;

const std::string kName = "A_NAME_OF_MORE_THAN_FIFTEEN_CHARACTERS";
const std::string kLong = "a text of more than fifteen characters";

template <class Value>
void assigns(Attempt& a, const Value& value) {
    a.makes([&] { return Processor::toNameValueAssignment(kName, value); });
}

template <class Value>
void assignsGrouped(Attempt& a, const Value& value) {
    const GlobalLocale locale(new GroupedNumbers);  // makes the library use a stream
    assigns(a, value);
}

toolbox::Set someSet() {
    toolbox::Set set;
    for (int i = 0; i < 10; ++i) set.insert(2 * i);
    return set;
}

// Runs a command, and frees its message as a host does.
void processes(Attempt& a, const std::string& command, const ScriptedProcessor::Process& process) {
    const SparingHost host;
    ScriptedProcessor processor(process);
    char* message = nullptr;
    bool accepted = false;
    const auto outcome = [&] {
        return accepted ? std::string("accepted") : message == nullptr ? "no message" : message;
    };
    a.changes([&] { accepted = processor.parseCommandString(command.c_str(), &message); }, outcome);
    VexaUtilStringDealloc(&message);
}

bool takesName(Processor& p) {
    std::string name;
    return p.getNextName(name);
}

bool takesWholeCommand(Processor& p) {
    std::string word;
    std::string text;
    toolbox::Set set;
    int64_t count = 0;
    return p.getCommand(word) && takesName(p) && p.getStringValue(text, true) && takesName(p) && p.getSetValue(set) &&
           takesName(p) && p.getInt64Value(count);
}

bool takesBoolean(Processor& p) {
    char value = 0;
    return takesName(p) && p.getBooleanValue(value);
}

bool takesDouble(Processor& p) {
    double value = 0;
    return takesName(p) && p.getDoubleValue(value);
}

bool takesInt32(Processor& p) {
    int32_t value = 0;
    return takesName(p) && p.getInt32Value(value);
}

bool takesSet(Processor& p) {
    toolbox::Set value;
    return takesName(p) && p.getSetValue(value);
}

bool deposits(Processor& p) {
    p.depositErrorMessage(kLong);
    return false;
}

// Calls a single getter on a command. The outcome has its result and its value.
template <class Get>
void gets(Attempt& a, const std::string& command, const Get& get) {
    const SparingHost host;
    ScriptedProcessor processor([&](Processor& p) {
        bool returned = false;
        std::string value = "before";
        a.changes([&] { returned = get(p, value); },
                  [&] { return std::string(returned ? "true " : "false ") + value; });
        return true;
    });
    processor.parseCommandString(command.c_str(), nullptr);
}

// The outcomes of a whole command if memory runs out: an exception, a getter's false, an earlier message, or no message
// from the host.
const std::vector<std::string> kCommandFailures = {"bad_alloc", "no message", ""};

struct ComposingProcessor : ScriptedProcessor {
    ComposingProcessor() : ScriptedProcessor(nullptr) {}
    bool composeCommandString(std::string& command) const override {
        command = "COMPOSED " + toNameValueAssignment(kName, kLong);
        return true;
    }
};

template <class Record>
void records(Attempt& a, const Record& record) {
    SparingHost host;
    host.setRecording(true);
    const ComposingProcessor processor;
    bool accepted = false;
    a.changes([&] { accepted = record(processor); },
              [&] {
                  std::string text = accepted ? "true" : "false";
                  for (const auto& recorded : host.recordedCommands()) text += ", " + recorded.command;
                  for (const auto& entry : host.journalEntries()) text += ", " + entry.command + *entry.journalData;
                  return text;
              });
}

const std::vector<std::string> kNotRecorded = {"bad_alloc", "false"};

}  // namespace

std::vector<Operation> processorOperations() {
    const std::string wholeCommand =
        "a-long-command-word-of-many-characters a-name-of-more-than-fifteen-characters = 'a text of more characters "
        "than fit into a string' ZONES = [1,3,5,7,9,11,13] COUNT = ";
    return {
        {"MacroCommandProcessorAbstract",
         [](Attempt& a) { a.makes([] { return ComposingProcessor(); }, [](const auto&) { return "made"; }); }},
        {"parseCommandString",
         [=](Attempt& a) { processes(a, wholeCommand + "12", takesWholeCommand); },
         {"bad_alloc", "no message", "", "Error: Internal error processing Set syntax. for command option: ZONES\n"}},
        {"parseCommandString, refused",
         [=](Attempt& a) { processes(a, wholeCommand + "many", takesWholeCommand); },
         {"bad_alloc", "no message", "", "Error: Internal error processing Set syntax. for command option: ZONES\n"}},
        {"depositErrorMessage", [](Attempt& a) { processes(a, "A", deposits); }, {"bad_alloc", "no message"}},
        {"getCommand",
         [](Attempt& a) { gets(a, kName, [](Processor& p, std::string& word) { return p.getCommand(word); }); }},
        {"getNextName",
         [](Attempt& a) {
             gets(a, kName + " = 1", [](Processor& p, std::string& name) { return p.getNextName(name); });
         },
         {"bad_alloc", "bad_alloc, leaving false " + kName}},
        {"getNextName, without its sign", [](Attempt& a) { processes(a, kName + " 1", takesName); }, kCommandFailures},
        {"getBooleanValue, refused", [](Attempt& a) { processes(a, kName + " = " + kName, takesBoolean); },
         kCommandFailures},
        {"getDoubleValue, refused", [](Attempt& a) { processes(a, kName + " = many", takesDouble); }, kCommandFailures},
        {"getInt32Value, refused", [](Attempt& a) { processes(a, kName + " = many", takesInt32); }, kCommandFailures},
        {"getStringValue",
         [](Attempt& a) {
             gets(a, "'" + kLong + "'", [](Processor& p, std::string& text) { return p.getStringValue(text, true); });
         },
         {"false a text of more ", "false a text of more than fifteen ch"}},
        {"getSetValue, refused",
         [](Attempt& a) { processes(a, "A = [1,,2,,3,,4,,5]", takesSet); },
         {"bad_alloc", "no message", "", "Error: Internal error processing Set syntax. for command option: A\n"}},
        {"getSetValue, without its end", [](Attempt& a) { processes(a, "A = [1", takesSet); }, kCommandFailures},
        {"recordMacroCommand",
         [](Attempt& a) { records(a, [](const Processor& p) { return p.recordMacroCommand("PROBE"); }); },
         kNotRecorded},
        {"journalMacroCommand",
         [](Attempt& a) {
             records(a, [](const Processor& p) { return p.journalMacroCommand("PROBE", kLong.c_str()); });
         },
         kNotRecorded},
        {"toNameValueAssignment, of a char", [](Attempt& a) { assigns(a, char{1}); }},
        {"toNameValueAssignment, of a text", [](Attempt& a) { assigns(a, kLong); }},
        {"toNameValueAssignment, of a double", [](Attempt& a) { assigns(a, 1234.5); }},
        {"toNameValueAssignment, of a double, grouped", [](Attempt& a) { assignsGrouped(a, 1234.5); }},
        {"toNameValueAssignment, of an int32", [](Attempt& a) { assigns(a, int32_t{1234567}); }},
        {"toNameValueAssignment, of an int32, grouped", [](Attempt& a) { assignsGrouped(a, int32_t{1234567}); }},
        {"toNameValueAssignment, of an int64", [](Attempt& a) { assigns(a, int64_t{1234567}); }},
        {"toNameValueAssignment, of an int64, grouped", [](Attempt& a) { assignsGrouped(a, int64_t{1234567}); }},
        {"toNameValueAssignment, of a set", [](Attempt& a) { assigns(a, someSet()); }},
    };
}

}  // namespace vexa::tests
