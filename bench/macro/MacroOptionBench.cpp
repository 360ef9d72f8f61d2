// Compares parsing of options with a bare loop over the same tokens, and rendering with plain appends to a string.
#include <charconv>
#include <memory>
#include <string>

#include "support/Rows.h"
#include "vexautilutil/BooleanMacroOption.h"
#include "vexautilutil/MacroCommandAbstract.h"
#include "vexautilutil/SetMacroOption.h"
#include "vexautilutil/StringMacroOption.h"
#include "vexautilutil/UInt64MacroOption.h"

namespace vexa::vexautilutil {
namespace {

using bench::addSubject;

constexpr int64_t kOptions = 100;

// ---- Parsing

using MakeValue = std::string (*)(int64_t);

std::string boolean(int64_t i) { return i % 2 == 0 ? "TRUE" : "FALSE"; }
std::string uint64(int64_t i) { return std::to_string(i * 123456789L); }
std::string quoted(int64_t i) { return "\"Pressure at inlet " + std::to_string(i) + '"'; }
std::string set(int64_t i) { return "[1-" + std::to_string(i + 1) + ",2000,3000-4000]"; }

std::string optionsText(int64_t count, MakeValue value) {
    std::string text;
    for (int64_t i = 0; i < count; ++i) text += "OPTION" + std::to_string(i) + '=' + value(i) + ' ';
    return text;
}

void walk(benchmark::State& state, MakeValue value) {
    const std::string text = optionsText(kOptions * state.range(0), value);
    const MacroTokenizer tokens = MacroCommandAbstract::tokenize(text);
    for (auto _ : state) {
        std::size_t characters = 0;
        const MacroTokenIterator end = tokens.end();
        for (MacroTokenIterator current = tokens.begin(); current != end; ++current) characters += current->size();
        benchmark::DoNotOptimize(characters);
    }
}

// Calls `parseOne` for one option after another, and skips the blank between them.
template <class ParseOne>
void parse(benchmark::State& state, MakeValue value, ParseOne parseOne) {
    const std::string text = optionsText(kOptions * state.range(0), value);
    const MacroTokenizer tokens = MacroCommandAbstract::tokenize(text);
    for (auto _ : state) {
        const MacroTokenIterator end = tokens.end();
        for (MacroTokenIterator current = tokens.begin(); current != end; ++current) parseOne(current, end);
    }
}

template <class ParseOne>
void addParsing(const std::string& row, MakeValue value, ParseOne parseOne) {
    addSubject(row + "/walk", [=](benchmark::State& state) { walk(state, value); });
    addSubject(row + "/ours", [=](benchmark::State& state) { parse(state, value, parseOne); });
}

// ---- Rendering

class Command : public MacroCommandAbstract {
public:
    using MacroCommandAbstract::MacroCommandAbstract;
    void execute() override {}
};

using Appending = std::string (*)(const std::string* names, const toolbox::Set& zones);

std::string appendBooleans(const std::string* names, const toolbox::Set&) {
    std::string text;
    text.reserve(80);
    text += "COMMAND";
    for (int i = 0; i < 4; ++i) {
        text += ' ';
        text += names[i];
        text += "=TRUE";
    }
    return text;
}

void appendNumber(std::string& text, uint64_t number) {
    char digits[20];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

void appendSet(std::string& text, const toolbox::Set& set) {
    char separator = '[';
    for (const toolbox::Set::Range& range : set.ranges()) {
        text += separator;
        appendNumber(text, static_cast<uint64_t>(range.first));
        if (range.last != range.first) {
            text += '-';
            appendNumber(text, static_cast<uint64_t>(range.last));
        }
        separator = ',';
    }
    text += ']';
}

std::string appendEachType(const std::string* names, const toolbox::Set& zones) {
    std::string text;
    text.reserve(120);
    text += "COMMAND ";
    text += names[0];
    text += "=TRUE ";
    text += names[1];
    text += '=';
    appendNumber(text, 1234567890123);
    text += ' ';
    text += names[2];
    text += "=\"Pressure at inlet\" ";
    text += names[3];
    text += '=';
    appendSet(text, zones);
    return text;
}

struct Rendering {
    const std::string names[4] = {"AVERAGED", "CAPPED", "VISIBLE", "WRAPPED"};
    toolbox::Set zones;
    Command booleans{"COMMAND"};
    Command eachType{"COMMAND"};

    Rendering() {
        zones.assign("[1-3,5,100-200]");
        for (const std::string& name : names) {
            booleans.addOption(std::make_shared<BooleanMacroOption>(name, true, nullptr));
        }
        eachType.addOption(std::make_shared<BooleanMacroOption>(names[0], true, nullptr));
        eachType.addOption(std::make_shared<UInt64MacroOption>(names[1], 1234567890123, nullptr));
        eachType.addOption(std::make_shared<StringMacroOption>(names[2], "Pressure at inlet", nullptr));
        eachType.addOption(std::make_shared<SetMacroOption>(names[3], &zones, false, nullptr));
    }
};

const Rendering& rendering() {
    static const Rendering all;
    return all;
}

void addRendering(const std::string& row, Appending appending, const Command& command) {
    if (appending(rendering().names, rendering().zones) != command.toString()) std::abort();
    bench::addCall(row + "/append",
                   [appending] { benchmark::DoNotOptimize(appending(rendering().names, rendering().zones).data()); });
    bench::addCall(row + "/ours", [&command] { benchmark::DoNotOptimize(command.toString().data()); });
}

const bool isAdded = [] {
    using Current = MacroTokenIterator;
    addParsing("parse-boolean", boolean, [](Current& current, const Current& end) {
        benchmark::DoNotOptimize(BooleanMacroOption(current, end, nullptr).value());
    });
    addParsing("parse-uint64", uint64, [](Current& current, const Current& end) {
        benchmark::DoNotOptimize(UInt64MacroOption(current, end, nullptr).value());
    });
    addParsing("parse-string", quoted, [](Current& current, const Current& end) {
        benchmark::DoNotOptimize(StringMacroOption(current, end, nullptr).value().data());
    });
    addParsing("parse-set", set, [](Current& current, const Current& end) {
        benchmark::DoNotOptimize(SetMacroOption(current, end, false, nullptr).value().get());
    });
    addRendering("render-booleans", appendBooleans, rendering().booleans);
    addRendering("render-each-type", appendEachType, rendering().eachType);
    return true;
}();

}  // namespace
}  // namespace vexa::vexautilutil
