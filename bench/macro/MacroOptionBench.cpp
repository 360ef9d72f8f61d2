// Parsing options, against a bare walk of the same token stream; rendering them, against a plain append.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "vexautilutil/BooleanMacroOption.h"
#include "vexautilutil/MacroCommandAbstract.h"
#include "vexautilutil/SetMacroOption.h"
#include "vexautilutil/StringMacroOption.h"
#include "vexautilutil/UInt64MacroOption.h"

namespace vexa::vexautilutil {
namespace {

constexpr int kOptions = 1000;

std::string booleanOptions() {
    std::string text;
    for (int i = 0; i < kOptions; ++i) text += "OPTION" + std::to_string(i) + (i % 2 == 0 ? "=TRUE " : "=FALSE ");
    return text;
}

std::string setOptions() {
    std::string text;
    for (int i = 0; i < kOptions; ++i) {
        text += "OPTION" + std::to_string(i) + "=[1-" + std::to_string(i + 1) + ",2000,3000-4000] ";
    }
    return text;
}

std::string uint64Options() {
    std::string text;
    for (int i = 0; i < kOptions; ++i)
        text += "OPTION" + std::to_string(i) + "=" + std::to_string(i * 123456789L) + " ";
    return text;
}

std::string stringOptions() {
    std::string text;
    for (int i = 0; i < kOptions; ++i)
        text += "OPTION" + std::to_string(i) + "=\"Pressure at inlet " + std::to_string(i) + "\" ";
    return text;
}

void walk(benchmark::State& state, const std::string& text) {
    const MacroTokenizer tokens = MacroCommandAbstract::tokenize(text);
    for (auto _ : state) {
        std::size_t characters = 0;
        const MacroTokenIterator end = tokens.end();
        for (MacroTokenIterator current = tokens.begin(); current != end; ++current) characters += current->size();
        benchmark::DoNotOptimize(characters);
    }
    state.SetItemsProcessed(state.iterations() * kOptions);
}

template <class ParseOne>
void parse(benchmark::State& state, const std::string& text, ParseOne parseOne) {
    const MacroTokenizer tokens = MacroCommandAbstract::tokenize(text);
    for (auto _ : state) {
        const MacroTokenIterator end = tokens.end();
        for (MacroTokenIterator current = tokens.begin(); current != end; ++current) parseOne(current, end);
    }
    state.SetItemsProcessed(state.iterations() * kOptions);
}

void walkBooleans(benchmark::State& state) { walk(state, booleanOptions()); }
void parseBooleans(benchmark::State& state) {
    parse(state, booleanOptions(), [](MacroTokenIterator& current, const MacroTokenIterator& end) {
        benchmark::DoNotOptimize(BooleanMacroOption(current, end, nullptr).value());
    });
}
BENCHMARK(walkBooleans);
BENCHMARK(parseBooleans);

void walkSets(benchmark::State& state) { walk(state, setOptions()); }
void parseSets(benchmark::State& state) {
    parse(state, setOptions(), [](MacroTokenIterator& current, const MacroTokenIterator& end) {
        benchmark::DoNotOptimize(SetMacroOption(current, end, false, nullptr).value().get());
    });
}
BENCHMARK(walkSets);
BENCHMARK(parseSets);

void walkUInt64(benchmark::State& state) { walk(state, uint64Options()); }
void parseUInt64(benchmark::State& state) {
    parse(state, uint64Options(), [](MacroTokenIterator& current, const MacroTokenIterator& end) {
        benchmark::DoNotOptimize(UInt64MacroOption(current, end, nullptr).value());
    });
}
BENCHMARK(walkUInt64);
BENCHMARK(parseUInt64);

void walkStrings(benchmark::State& state) { walk(state, stringOptions()); }
void parseStrings(benchmark::State& state) {
    parse(state, stringOptions(), [](MacroTokenIterator& current, const MacroTokenIterator& end) {
        benchmark::DoNotOptimize(StringMacroOption(current, end, nullptr).value().data());
    });
}
BENCHMARK(walkStrings);
BENCHMARK(parseStrings);

// One option of each type, against the same text by appending.
void appendOption(benchmark::State& state, const std::string& value) {
    const std::string name = "OPTION";
    for (auto _ : state) {
        std::string text;
        text.reserve(name.size() + 1 + value.size());
        text += name;
        text += '=';
        text += value;
        benchmark::DoNotOptimize(text.data());
    }
}
void renderOption(benchmark::State& state, const MacroOptionInterface& option) {
    for (auto _ : state) benchmark::DoNotOptimize(option.toString().data());
}
const toolbox::Set& zones() {
    static const toolbox::Set set = [] {
        toolbox::Set members;
        members.assign("[1-3,5,100-200]");
        return members;
    }();
    return set;
}
const BooleanMacroOption kBoolean("OPTION", true, nullptr);
const UInt64MacroOption kUInt64("OPTION", 1234567890123, nullptr);
const StringMacroOption kString("OPTION", "Pressure at inlet", nullptr);
const SetMacroOption kSet("OPTION", &zones(), false, nullptr);
BENCHMARK_CAPTURE(appendOption, ofBoolean, std::string("TRUE"));
BENCHMARK_CAPTURE(renderOption, ofBoolean, kBoolean);
BENCHMARK_CAPTURE(appendOption, ofUInt64, std::string("1234567890123"));
BENCHMARK_CAPTURE(renderOption, ofUInt64, kUInt64);
BENCHMARK_CAPTURE(appendOption, ofString, std::string("\"Pressure at inlet\""));
BENCHMARK_CAPTURE(renderOption, ofString, kString);
BENCHMARK_CAPTURE(appendOption, ofSet, std::string("[1-3,5,100-200]"));
BENCHMARK_CAPTURE(renderOption, ofSet, kSet);

class Command : public MacroCommandAbstract {
public:
    using MacroCommandAbstract::MacroCommandAbstract;
    void execute() override {}
};

void appendPlainly(benchmark::State& state) {
    const std::string names[] = {"AVERAGED", "CAPPED", "VISIBLE", "WRAPPED"};
    for (auto _ : state) {
        std::string text;
        text.reserve(80);
        text += "COMMAND";
        for (const std::string& name : names) {
            text += ' ';
            text += name;
            text += "=TRUE";
        }
        benchmark::DoNotOptimize(text.data());
    }
}
void renderCommand(benchmark::State& state) {
    Command command("COMMAND");
    for (const char* name : {"AVERAGED", "CAPPED", "VISIBLE", "WRAPPED"}) {
        command.addOption(std::make_shared<BooleanMacroOption>(name, true, nullptr));
    }
    for (auto _ : state) benchmark::DoNotOptimize(command.toString().data());
}
BENCHMARK(appendPlainly);
BENCHMARK(renderCommand);

}  // namespace
}  // namespace vexa::vexautilutil
