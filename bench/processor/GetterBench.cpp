// Compares the getters for numbers with from_chars() on the same tokens.
#include <charconv>
#include <string>
#include <system_error>

#include "processor/Processor.h"
#include "support/Rows.h"

namespace vexa::vexautilutil {
namespace {

using bench::addSubject;

constexpr int64_t kValues = 1000;

template <class Value>
using Make = Value (*)(int64_t);

double makeDouble(int64_t i) { return static_cast<double>(i % 1000 - 500) * 0.37 + 1e-3; }
int64_t makeInt64(int64_t i) { return (i % 1000 - 500) * 123456789; }
int32_t makeInt32(int64_t i) { return static_cast<int32_t>(i % 1000 - 500) * 4321; }

// A command that has only values. processCommand() reads one after another.
template <class Value>
std::string valuesText(int64_t count, Make<Value> make) {
    std::string text;
    char digits[64];
    for (int64_t i = 0; i < count; ++i) {
        text.append(digits, std::to_chars(digits, digits + sizeof digits, make(i)).ptr);
        text += ' ';
    }
    return text;
}

template <class Value, class Getter>
void get(benchmark::State& state, Make<Value> make, Getter getter) {
    const int64_t count = kValues * state.range(0);
    const std::string text = valuesText(count, make);
    Processor reader([&](MacroCommandProcessorAbstract& processor) {
        Value value{};
        for (int64_t i = 0; i < count; ++i) {
            if (!getter(processor, value)) return false;
            benchmark::DoNotOptimize(value);
        }
        return true;
    });
    for (auto _ : state) {
        char* errMsg = nullptr;
        if (!reader.parseCommandString(text.c_str(), &errMsg)) state.SkipWithError("a value was refused");
    }
}

bool isWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// Hand-written code: takes the next token, and accepts it if the whole token is a number.
template <class Value>
bool convertToken(const char*& at, const char* end, Value& value) {
    while (at != end && isWhiteSpace(*at)) ++at;
    const char* const token = at;
    while (at != end && !isWhiteSpace(*at)) ++at;
    const auto [behind, error] = std::from_chars(token, at, value);
    return error == std::errc() && behind == at;
}

template <class Value>
void convert(benchmark::State& state, Make<Value> make) {
    const int64_t count = kValues * state.range(0);
    const std::string text = valuesText(count, make);
    for (auto _ : state) {
        const std::string copy(text);  // the processor copies the command, too
        const char* at = copy.data();
        const char* const end = at + copy.size();
        Value value{};
        for (int64_t i = 0; i < count; ++i) {
            if (!convertToken(at, end, value)) state.SkipWithError("a value was refused");
            benchmark::DoNotOptimize(value);
        }
    }
}

template <class Value, class Getter>
void add(const std::string& row, Make<Value> make, Getter getter) {
    addSubject(row + "/from_chars", [=](benchmark::State& state) { convert(state, make); });
    addSubject(row + "/ours", [=](benchmark::State& state) { get(state, make, getter); });
}

const bool isAdded = [] {
    using Source = MacroCommandProcessorAbstract;
    add("get-double", makeDouble, [](Source& source, double& value) { return source.getDoubleValue(value); });
    add("get-int64", makeInt64, [](Source& source, int64_t& value) { return source.getInt64Value(value); });
    add("get-int32", makeInt32, [](Source& source, int32_t& value) { return source.getInt32Value(value); });
    return true;
}();

}  // namespace
}  // namespace vexa::vexautilutil
