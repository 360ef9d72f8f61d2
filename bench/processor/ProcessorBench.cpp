// The typed getters, against from_chars on the same tokens; the assignments, against to_chars and append.
#include <benchmark/benchmark.h>

#include <charconv>
#include <functional>
#include <string>
#include <string_view>

#include "vexautilutil/MacroCommandProcessorAbstract.h"

namespace vexa::vexautilutil {
namespace {

constexpr int kValues = 1000;

// A command of nothing but values, which the hook reads one after another.
template <class Value>
std::string valuesText(Value (*make)(int)) {
    std::string text;
    char digits[64];
    for (int i = 0; i < kValues; ++i) {
        text.append(digits, std::to_chars(digits, digits + sizeof digits, make(i)).ptr);
        text += ' ';
    }
    return text;
}

class Reader : public MacroCommandProcessorAbstract {
public:
    bool processCommand() override { return read(*this); }
    bool composeCommandString(std::string& command) const override {
        command = "NONE";
        return true;
    }
    std::function<bool(MacroCommandProcessorAbstract&)> read;
};

template <class Value, class Getter>
void getValues(benchmark::State& state, const std::string& text, Getter getter) {
    Reader reader;
    reader.read = [&](MacroCommandProcessorAbstract& processor) {
        Value value{};
        for (int i = 0; i < kValues; ++i) {
            if (!(processor.*getter)(value)) return false;
            benchmark::DoNotOptimize(value);
        }
        return true;
    };
    for (auto _ : state) {
        char* errMsg = nullptr;
        if (!reader.parseCommandString(text.c_str(), &errMsg)) state.SkipWithError("a value was refused");
    }
    state.SetItemsProcessed(state.iterations() * kValues);
}

// What a user would write by hand: find the next word, convert it.
template <class Value>
void convertValues(benchmark::State& state, const std::string& text) {
    for (auto _ : state) {
        const std::string copy(text);
        const char* at = copy.data();
        const char* const end = at + copy.size();
        Value value{};
        while (true) {
            while (at != end && *at == ' ') ++at;
            if (at == end) break;
            at = std::from_chars(at, end, value).ptr;
            benchmark::DoNotOptimize(value);
        }
    }
    state.SetItemsProcessed(state.iterations() * kValues);
}

std::string doublesText() {
    return valuesText<double>([](int i) { return (i - 500) * 0.37 + 1e-3; });
}
std::string int64Text() {
    return valuesText<int64_t>([](int i) { return (int64_t{i} - 500) * 123456789; });
}
std::string int32Text() {
    return valuesText<int32_t>([](int i) { return (i - 500) * 4321; });
}

using Processor = MacroCommandProcessorAbstract;

void convertDoubles(benchmark::State& state) { convertValues<double>(state, doublesText()); }
void getDoubles(benchmark::State& state) { getValues<double>(state, doublesText(), &Processor::getDoubleValue); }
BENCHMARK(convertDoubles);
BENCHMARK(getDoubles);

void convertInt64(benchmark::State& state) { convertValues<int64_t>(state, int64Text()); }
void getInt64(benchmark::State& state) { getValues<int64_t>(state, int64Text(), &Processor::getInt64Value); }
BENCHMARK(convertInt64);
BENCHMARK(getInt64);

void convertInt32(benchmark::State& state) { convertValues<int32_t>(state, int32Text()); }
void getInt32(benchmark::State& state) { getValues<int32_t>(state, int32Text(), &Processor::getInt32Value); }
BENCHMARK(convertInt32);
BENCHMARK(getInt32);

template <class Value>
void appendNumber(benchmark::State& state, Value value) {
    const std::string name = "VELOCITY";
    for (auto _ : state) {
        char digits[64];
        std::string text;
        text.reserve(40);
        text += name;
        text += " = ";
        if constexpr (std::is_floating_point_v<Value>) {
            text.append(digits,
                        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 6).ptr);
        } else {
            text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
        }
        text += ' ';
        benchmark::DoNotOptimize(text.data());
    }
}
template <class Value>
void assignNumber(benchmark::State& state, Value value) {
    const std::string name = "VELOCITY";
    for (auto _ : state) benchmark::DoNotOptimize(Processor::toNameValueAssignment(name, value).data());
}
BENCHMARK_CAPTURE(appendNumber, ofDouble, 123.456);
BENCHMARK_CAPTURE(assignNumber, ofDouble, 123.456);
BENCHMARK_CAPTURE(appendNumber, ofInt64, int64_t{-1234567890123});
BENCHMARK_CAPTURE(assignNumber, ofInt64, int64_t{-1234567890123});

}  // namespace
}  // namespace vexa::vexautilutil
