#include "stacks/StackText.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace vexa::runner {
namespace {

TEST(StackText, OfAFrameHasTheLine) {
    const std::string here = std::filesystem::current_path();
    EXPECT_EQ(textOf(Frame{"stats::summarize(int)", here + "/src/Stats.cpp", 42, "./libstats.so", 0x1c}),
              "src/Stats.cpp:42, in stats::summarize");
    EXPECT_EQ(textOf(Frame{"summarize", "/no/Stats.cpp", 42, "./libstats.so", 0x1c}), "/no/Stats.cpp:42, in summarize");
    EXPECT_EQ(textOf(Frame{"", "/no/Stats.cpp", 42, "./libstats.so", 0x1c}), "/no/Stats.cpp:42");
}

TEST(StackText, OfAFrameWithoutLineHasTheOffset) {
    EXPECT_EQ(textOf(Frame{"summarize(int)", "", 0, "./libstats.so", 0x1c}), "summarize+0x1c in libstats.so");
    EXPECT_EQ(textOf(Frame{"", "", 0, "/lib/libstats.so", 0x1139}), "0x1139 in libstats.so");
    EXPECT_EQ(textOf(Frame{"", "", 0, "", 0x7f00}), "0x7f00");
}

TEST(StackText, OfAStackNumbersTheFrames) {
    const Stack stack(11, Frame{"f()", "/no/a.cpp", 1, "", 0});
    const std::string text = textOf(stack);
    EXPECT_EQ(text.rfind("#0  /no/a.cpp:1, in f\n#1  /no/a.cpp:1, in f\n", 0), 0U) << text;
    EXPECT_NE(text.find("\n#10 /no/a.cpp:1, in f\n"), std::string::npos) << text;
    EXPECT_EQ(textOf(Stack()), "");
}

TEST(StackText, LeavesTheParametersOut) {
    const struct {
        const char* function;
        const char* name;
    } cases[] = {
        {"execute", "execute"},
        {"stats::summarize(int, char const*)", "stats::summarize"},
        {"stats::Table::rows() const", "stats::Table::rows"},
        {"(anonymous namespace)::run(int)", "(anonymous namespace)::run"},
        {"stats::(anonymous namespace)::run(int)", "stats::(anonymous namespace)::run"},
        {"run(int)::{lambda(long)#1}::operator()(long) const", "run::{lambda(long)#1}::operator()"},
        {"Table::rows() const::Local::f()", "Table::rows::Local::f"},
        {"void call<void (*)(int)>(void (*)(int))", "void call<void (*)(int)>"},
        {"std::function<void ()>::operator()() const", "std::function<void ()>::operator()"},
        {"operator<(A const&, B)", "operator<"},
        {"A::operator->() const", "A::operator->"},
        {"sum(int) [clone .part.0]", "sum"},
        {"sum(int", "sum"},
        {"", ""},
    };
    for (const auto& [function, name] : cases) EXPECT_EQ(withoutParameters(function), name) << function;
}

}  // namespace
}  // namespace vexa::runner
