#include "commands/report/CallArguments.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

using Texts = std::vector<std::optional<std::string>>;

TEST(TextArguments, AreReadAsTheyWereHandedOver) {
    struct Case {
        const char* why;
        const char* arguments;
        Texts texts;
    };
    const Case cases[] = {
        {"no argument", "", {}},
        {"two", R"("ONE", "SAY a")", {"ONE", "SAY a"}},
        {"an empty one", R"("")", {""}},
        {"null", R"("ONE", null)", {"ONE", std::nullopt}},
        {"null as a text", R"("null")", {"null"}},
        {"a quote and a comma within", R"("a \", b")", {"a \", b"}},
        {"every escape", R"("\\\n\r\t\"")", {"\\\n\r\t\""}},
        {"other arguments between", R"(arglist#1, "P1", address, "x")", {"P1", "x"}},
        {"a quote left open", R"("ab)", {"ab"}},
        {"an escape at the end", R"("ab\)", {"ab\\"}},
    };
    for (const Case& c : cases) EXPECT_EQ(textArguments(c.arguments), c.texts) << c.why;
}

}  // namespace
}  // namespace vexa::runner
