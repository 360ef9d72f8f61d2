// The operations of options and commands.
#include <stdexcept>

#include "AllocationFaults.h"
#include "library/macro/Tokens.h"
#include "support/GlobalLocale.h"
#include "vexautilutil/BooleanMacroOption.h"
#include "vexautilutil/MacroCommandAbstract.h"
#include "vexautilutil/MacroCommandError.h"
#include "vexautilutil/SetMacroOption.h"
#include "vexautilutil/StringMacroOption.h"
#include "vexautilutil/UInt64MacroOption.h"

namespace vexa::tests {
namespace {

using namespace vexautilutil;
using Command = MacroCommandAbstract;

const std::string kName = "ANAMEOFMORETHANFIFTEENCHARACTERS";
const std::string kLong = "a text of more than fifteen characters";

const std::string kBoolean = kName + "=TRUE";
const std::string kInteger = kName + "=12345678901234567890";
const std::string kGrouped = kName + "=12.345.678.901.234.567.890";
const std::string kString = kName + "=\"" + kLong + '"';
const std::string kSet = kName + "=[1,3,5,7,9,11,13,15]";

const toolbox::Set& someSet() {
    static const toolbox::Set set = [] {
        toolbox::Set made;
        made.insert(1, 3);
        made.insert(7);
        return made;
    }();
    return set;
}

std::string textOf(const MacroOptionInterface& option) { return option.toString(); }

// Reads an option. `more` are the arguments of its constructor after the iterators.
template <class Option, class... More>
void parses(Attempt& a, const std::string& text, const More&... more) {
    Tokens tokens(text);
    a.makes([&] { return Option(tokens.current, tokens.end, more...); }, textOf);
}

template <class Option, class... Arguments>
void makes(Attempt& a, const Arguments&... arguments) {
    a.makes([&] { return Option(arguments...); }, textOf);
}

template <class Option>
void renders(Attempt& a, const Option& option) {
    a.makes([&] { return option.toString(); });
}

template <class Option>
void copies(Attempt& a, const Option& option) {
    a.makes([&] { return Option(option); }, textOf);
}

// After a failed assignment, the object may only be assigned to again or destroyed.
template <class Object>
void assigns(Attempt& a, Object object, const Object& other) {
    bool isDone = false;
    const auto assign = [&] {
        object = other;
        isDone = true;
    };
    a.changes(assign, [&] { return isDone ? object.toString() : "not done"; });
    assign();
    if (object.toString() != other.toString()) throw std::logic_error("spoilt by the assignment that failed");
}

template <class Option>
void names(Attempt& a, const Option& option) {
    a.makes([&] { return option.name(); });
}

struct NoCommand : Command {
    using Command::Command;
    void execute() override {}
};

std::shared_ptr<MacroOptionInterface> anOption(const std::string& name) {
    return std::make_shared<BooleanMacroOption>(name, true, nullptr);
}

void adds(Attempt& a, const std::string& name) {
    NoCommand command(kName);
    command.addOption(anOption(kName));
    const auto option = anOption(name);
    a.changes([&] { command.addOption(option); },
              [&] { return command.toString() + std::to_string(option.use_count()); });
}

void rendersCommand(Attempt& a) {
    NoCommand command(kName);
    for (const char* name : {"ONE", "TWO", "THREE"}) command.addOption(anOption(kName + name));
    a.makes([&] { return command.toString(); });
}

void copiesCommand(Attempt& a) {
    NoCommand command(kName);
    for (const char* name : {"ONE", "TWO"}) command.addOption(anOption(kName + name));
    a.makes([&] { return NoCommand(command); }, [](const Command& copy) { return copy.toString(); });
}

void assignsCommand(Attempt& a) {
    NoCommand command("SHORT");
    NoCommand other(kName);
    for (const char* name : {"ONE", "TWO"}) other.addOption(anOption(kName + name));
    assigns(a, command, other);
}

template <class Parse>
void parsesStep(Attempt& a, const std::string& text, const Parse& parse) {
    Tokens tokens(text);
    a.makes([&] { return parse(tokens.current, tokens.end); });
}

void tokenizes(Attempt& a) {
    const std::string text = kName + "=[1," + kName + ']';
    const auto join = [](const MacroTokenizer& tokens) {
        std::string joined;
        for (const std::string& token : tokens) joined += token + '|';
        return joined;
    };
    a.makes([&] { return join(Command::tokenize(text)); });
}

BooleanMacroOption aBoolean(const std::string& name = kName) { return {name, true, nullptr}; }
UInt64MacroOption anInteger(const std::string& name = kName) { return {name, 12345678901234567890U, nullptr}; }
StringMacroOption aString(const std::string& name = kName) { return {name, kLong, &kLong}; }
SetMacroOption aSet(const std::string& name = kName) { return {name, &someSet(), true, &someSet()}; }

}  // namespace

std::vector<Operation> macroOperations() {
    const bool* const noBoolean = nullptr;
    const uint64_t* const noInteger = nullptr;
    const std::string* const noString = nullptr;
    const toolbox::Set* const noSet = nullptr;
    const bool aDefault = true;
    return {
        {"BooleanMacroOption", [=](Attempt& a) { makes<BooleanMacroOption>(a, kName, true, noBoolean); }},
        {"BooleanMacroOption, from text", [=](Attempt& a) { parses<BooleanMacroOption>(a, kBoolean, noBoolean); }},
        {"BooleanMacroOption, from text, with a default",
         [=](Attempt& a) { parses<BooleanMacroOption>(a, kBoolean, &aDefault); }},
        {"BooleanMacroOption, refused",
         [=](Attempt& a) { parses<BooleanMacroOption>(a, kName + "=" + kName, noBoolean); }},
        {"BooleanMacroOption, missing", [=](Attempt& a) { parses<BooleanMacroOption>(a, kName + "=", noBoolean); }},
        {"BooleanMacroOption(const BooleanMacroOption&)", [](Attempt& a) { copies(a, aBoolean()); }},
        {"BooleanMacroOption::operator=", [](Attempt& a) { assigns(a, aBoolean("A"), aBoolean()); }},
        {"BooleanMacroOption::toString", [](Attempt& a) { renders(a, aBoolean()); }},
        {"BooleanMacroOption::name", [](Attempt& a) { names(a, aBoolean()); }},

        {"UInt64MacroOption", [=](Attempt& a) { makes<UInt64MacroOption>(a, kName, uint64_t{12}, noInteger); }},
        {"UInt64MacroOption, from text", [=](Attempt& a) { parses<UInt64MacroOption>(a, kInteger, noInteger); }},
        {"UInt64MacroOption, from grouped text",
         [=](Attempt& a) {
             const GlobalLocale locale(new GroupedNumbers);
             parses<UInt64MacroOption>(a, kGrouped, noInteger);
         }},
        {"UInt64MacroOption, refused",
         [=](Attempt& a) { parses<UInt64MacroOption>(a, kName + "=" + kName, noInteger); }},
        {"UInt64MacroOption, missing", [=](Attempt& a) { parses<UInt64MacroOption>(a, kName + "=", noInteger); }},
        {"UInt64MacroOption(const UInt64MacroOption&)", [](Attempt& a) { copies(a, anInteger()); }},
        {"UInt64MacroOption::operator=", [](Attempt& a) { assigns(a, anInteger("A"), anInteger()); }},
        {"UInt64MacroOption::toString", [](Attempt& a) { renders(a, anInteger()); }},
        {"UInt64MacroOption::toString, grouped",
         [](Attempt& a) {
             const GlobalLocale locale(new GroupedNumbers);
             renders(a, anInteger());
         }},
        {"UInt64MacroOption::name", [](Attempt& a) { names(a, anInteger()); }},

        {"StringMacroOption", [=](Attempt& a) { makes<StringMacroOption>(a, kName, kLong, noString); }},
        {"StringMacroOption, with a default", [](Attempt& a) { makes<StringMacroOption>(a, kName, kLong, &kLong); }},
        {"StringMacroOption, from text", [=](Attempt& a) { parses<StringMacroOption>(a, kString, noString); }},
        {"StringMacroOption, from text, with a default",
         [](Attempt& a) { parses<StringMacroOption>(a, kString, &kLong); }},
        {"StringMacroOption, unquoted", [=](Attempt& a) { parses<StringMacroOption>(a, kName + "=A", noString); }},
        {"StringMacroOption, unterminated", [=](Attempt& a) { parses<StringMacroOption>(a, kName + "='A", noString); }},
        {"StringMacroOption, missing", [=](Attempt& a) { parses<StringMacroOption>(a, kName + "=", noString); }},
        {"StringMacroOption(const StringMacroOption&)", [](Attempt& a) { copies(a, aString()); }},
        {"StringMacroOption::operator=",
         [](Attempt& a) {
             StringMacroOption option(kName, kLong + kLong, nullptr);
             assigns(a, option, aString());
         }},
        {"StringMacroOption::toString", [](Attempt& a) { renders(a, aString()); }},
        {"StringMacroOption::name", [](Attempt& a) { names(a, aString()); }},
        {"StringMacroOption::value",
         [](Attempt& a) {
             const StringMacroOption option = aString();
             a.makes([&] { return option.value(); });
         }},

        {"SetMacroOption", [=](Attempt& a) { makes<SetMacroOption>(a, kName, &someSet(), true, &someSet()); }},
        {"SetMacroOption, from text", [=](Attempt& a) { parses<SetMacroOption>(a, kSet, false, noSet); }},
        {"SetMacroOption, from text, with a default",
         [](Attempt& a) { parses<SetMacroOption>(a, kSet, true, &someSet()); }},
        {"SetMacroOption, unbracketed", [=](Attempt& a) { parses<SetMacroOption>(a, kName + "=1", false, noSet); }},
        {"SetMacroOption, unterminated", [=](Attempt& a) { parses<SetMacroOption>(a, kName + "=[1", false, noSet); }},
        {"SetMacroOption, refused by the set",
         [=](Attempt& a) { parses<SetMacroOption>(a, kName + "=[1,,2]", false, noSet); }},
        {"SetMacroOption, missing", [=](Attempt& a) { parses<SetMacroOption>(a, kName + "=", false, noSet); }},
        {"SetMacroOption(const SetMacroOption&)", [](Attempt& a) { copies(a, aSet()); }},
        {"SetMacroOption::operator=", [](Attempt& a) { assigns(a, aSet("A"), aSet()); }},
        {"SetMacroOption::toString", [](Attempt& a) { renders(a, aSet()); }},
        {"SetMacroOption::name", [](Attempt& a) { names(a, aSet()); }},

        {"MacroCommandAbstract",
         [](Attempt& a) {
             a.makes([] { return NoCommand(kName); }, [](const Command& command) { return command.name(); });
         }},
        {"MacroCommandAbstract(const MacroCommandAbstract&)", copiesCommand},
        {"MacroCommandAbstract::operator=", assignsCommand},
        {"MacroCommandAbstract::name",
         [](Attempt& a) {
             const NoCommand command(kName);
             a.makes([&] { return command.name(); });
         }},
        {"MacroCommandAbstract::toString", rendersCommand},
        {"MacroCommandAbstract::addOption", [](Attempt& a) { adds(a, kName + "TOO"); }},
        {"MacroCommandAbstract::addOption, a second time", [](Attempt& a) { adds(a, kName); }},
        {"MacroCommandAbstract::tokenize", tokenizes},
        {"MacroCommandError",
         [](Attempt& a) {
             a.makes([] { return MacroCommandError(kLong); },
                     [](const ExceptionBase& error) { return error.message(); });
         }},

        {"parseIdentifier", [](Attempt& a) { parsesStep(a, kName, parseIdentifier); }},
        {"parseIdentifier, of none", [](Attempt& a) { parsesStep(a, "1" + kName, parseIdentifier); }},
        {"parseIdentifier, at the end", [](Attempt& a) { parsesStep(a, "", parseIdentifier); }},
        {"parseAssignmentOperator, of none", [](Attempt& a) { parsesStep(a, kName, parseAssignmentOperator); }},
        {"parseAssignmentOperator, at the end", [](Attempt& a) { parsesStep(a, "", parseAssignmentOperator); }},
    };
}

}  // namespace vexa::tests
