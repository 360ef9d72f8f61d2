// What reading numbers through a Scanner costs, against from_chars() alone on the same tokens.

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "vexa/Scanner.h"

namespace {

using vexa::Scanner;

constexpr int kTokens = 1000;

template <class Number>
std::vector<std::string> makeTokens() {
    std::mt19937_64 random(42);
    std::uniform_real_distribution<double> anywhere(-1e6, 1e6);
    std::vector<std::string> tokens;
    for (int i = 0; i < kTokens; ++i) tokens.push_back(std::to_string(static_cast<Number>(anywhere(random))));
    return tokens;
}

std::string join(const std::vector<std::string>& tokens) {
    std::string text;
    for (const std::string& token : tokens) text += token + " ";
    return text;
}

// Asks before it reads, as the getters of a command processor do.
void scanDoubles(benchmark::State& state) {
    const std::string text = join(makeTokens<double>());
    Scanner scanner;
    for (auto _ : state) {
        scanner.reset(text);
        while (scanner.hasNextDoubleToken()) benchmark::DoNotOptimize(scanner.nextDoubleToken());
    }
}
BENCHMARK(scanDoubles);

void scanInt64s(benchmark::State& state) {
    const std::string text = join(makeTokens<int64_t>());
    Scanner scanner;
    for (auto _ : state) {
        scanner.reset(text);
        while (scanner.hasNextInt64Token()) benchmark::DoNotOptimize(scanner.nextInt64Token());
    }
}
BENCHMARK(scanInt64s);

// Reads without asking.
void scanDoublesUnasked(benchmark::State& state) {
    const std::string text = join(makeTokens<double>());
    Scanner scanner;
    for (auto _ : state) {
        scanner.reset(text);
        for (int i = 0; i < kTokens; ++i) benchmark::DoNotOptimize(scanner.nextDoubleToken());
    }
}
BENCHMARK(scanDoublesUnasked);

void scanInt64sUnasked(benchmark::State& state) {
    const std::string text = join(makeTokens<int64_t>());
    Scanner scanner;
    for (auto _ : state) {
        scanner.reset(text);
        for (int i = 0; i < kTokens; ++i) benchmark::DoNotOptimize(scanner.nextInt64Token());
    }
}
BENCHMARK(scanInt64sUnasked);

template <class Number>
void fromChars(benchmark::State& state) {
    const std::vector<std::string> tokens = makeTokens<Number>();
    for (auto _ : state) {
        for (const std::string& token : tokens) {
            Number number{};
            std::from_chars(token.data(), token.data() + token.size(), number);
            benchmark::DoNotOptimize(number);
        }
    }
}
BENCHMARK_TEMPLATE(fromChars, double);
BENCHMARK_TEMPLATE(fromChars, int64_t);

}  // namespace
