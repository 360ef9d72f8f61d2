#include "vexautilutil/StyleValue.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "support/FailingAllocator.h"
#include "support/GlobalLocale.h"
#include "support/Sets.h"
#include "vexastandin/Host.h"

namespace vexa::vexautilutil {
namespace {

using tests::setOf;
using Path = std::vector<std::string>;

struct Value {
    ResultType_e type = ResultType_Double;
    GetValueReturnCode_e code = GetValueReturnCode_Ok;
    std::string text = "untouched";
};

Value valueOf(Path path, long offset1 = 0, long offset2 = 0) {
    Value value;
    getValueAsString(path, offset1, offset2, value.type, value.code, value.text);
    return value;
}

void expectValue(const Value& value, ResultType_e type, const std::string& text) {
    EXPECT_EQ(value.code, GetValueReturnCode_Ok);
    EXPECT_EQ(value.type, type);
    EXPECT_EQ(value.text, text);
}

class StyleValueTest : public testing::Test {
protected:
    // Returns the host's calls so far, one per line.
    std::vector<std::string> calls() const {
        std::vector<std::string> lines;
        for (const standin::Call& call : m_host.calls()) lines.push_back(call.function + '(' + call.arguments + ')');
        return lines;
    }

    standin::Host m_host;
};

TEST(ResultType, HasTheNumbersOfTheBinaryContract) {
    EXPECT_EQ(ResultType_Double, 0);
    EXPECT_EQ(ResultType_Integer, 1);
    EXPECT_EQ(ResultType_Set, 2);
    EXPECT_EQ(ResultType_String, 3);
    EXPECT_EQ(ResultType_None, 4);
}

TEST_F(StyleValueTest, WritesDoublesToSixSignificantDigits) {
    const struct {
        double value;
        const char* text;
    } cases[] = {{0.5, "0.5"},
                 {1.0, "1"},
                 {0.1234567, "0.123457"},
                 {1234567.0, "1.23457e+06"},
                 {100.0, "100"},
                 {1e-7, "1e-07"},
                 {-2.5, "-2.5"},
                 {0.0, "0"},
                 {std::numeric_limits<double>::infinity(), "inf"}};
    for (const auto& c : cases) {
        m_host.setStyle({"Size"}, c.value);
        expectValue(valueOf({"Size"}), ResultType_Double, c.text);
    }
}

TEST_F(StyleValueTest, WritesADoubleWhateverTheKeyword) {
    m_host.setStyle({"Text"}, 0.5);
    expectValue(valueOf({"Text"}), ResultType_Double, "0.5");
}

TEST_F(StyleValueTest, WritesIntegers) {
    for (const int64_t number : {int64_t{-3}, int64_t{0}, int64_t{1234567}, std::numeric_limits<int64_t>::min(),
                                 std::numeric_limits<int64_t>::max()}) {
        m_host.setStyle({"Count"}, number);
        expectValue(valueOf({"Count"}), ResultType_Integer, std::to_string(number));
    }
}

TEST_F(StyleValueTest, DoesNotGroupTheDigitsOfIntegers) {
    const tests::GlobalLocale locale(new tests::GroupedNumbers);
    m_host.setStyle({"Count"}, int64_t{1234567});
    expectValue(valueOf({"Count"}), ResultType_Integer, "1234567");
}

TEST_F(StyleValueTest, WritesDoublesInTheGlobalLocale) {
    const tests::GlobalLocale locale(new tests::GroupedNumbers);
    m_host.setStyle({"Size"}, 0.5);
    expectValue(valueOf({"Size"}), ResultType_Double, "0,5");
}

TEST_F(StyleValueTest, ReturnsTheTextOfEveryTextKeyword) {
    for (const char* keyword :
         {"ExportFName", "Name", "RedChannelLabel", "GreenChannelLabel", "BlueChannelLabel", "ASCIIChar", "Text",
          "ExtendedName", "ExtendedSettings", "DynamicLabelName", "PositivePrefix", "PositiveSuffix", "NegativePrefix",
          "NegativeSuffix", "ZeroPrefix", "ZeroSuffix"}) {
        m_host.setStyle({"Group", keyword}, std::string("some text"));
        expectValue(valueOf({"Group", keyword}), ResultType_String, "some text");
    }
}

TEST_F(StyleValueTest, ReturnsTheSetOfEverySetKeyword) {
    for (const char* keyword : {"UseClipPlanes", "ActiveFieldMaps"}) {
        m_host.setStyle({keyword}, setOf("[1-3,5]"));
        expectValue(valueOf({keyword}), ResultType_Set, "[1-3,5]");
    }
}

TEST_F(StyleValueTest, ReturnsEmptyTextsAndSets) {
    m_host.setStyle({"Name"}, std::string());
    m_host.setStyle({"ActiveFieldMaps"}, toolbox::Set());
    expectValue(valueOf({"Name"}), ResultType_String, "");
    expectValue(valueOf({"ActiveFieldMaps"}), ResultType_Set, "[]");
}

TEST_F(StyleValueTest, IgnoresTheCaseOfTheKeyword) {
    m_host.setStyle({"Name"}, std::string("a"));
    m_host.setStyle({"ActiveFieldMaps"}, setOf("[2]"));
    expectValue(valueOf({"name"}), ResultType_String, "a");
    expectValue(valueOf({"NAME"}), ResultType_String, "a");
    expectValue(valueOf({"aCTIVEfIELDmAPS"}), ResultType_Set, "[2]");
}

TEST_F(StyleValueTest, TakesKeywordsInFullOnly) {
    for (const char* keyword : {"NameX", "Nam", "XName", "Name ", "N\xe4me"}) {
        const Path path{"Group", keyword};
        m_host.setStyle(path, int64_t{4});
        expectValue(valueOf(path), ResultType_Integer, "4");
    }
}

TEST_F(StyleValueTest, PassesPathOffsetsAndHolderInOrder) {
    m_host.setStyle({"A", "B"}, -3, 7, 0.5);
    expectValue(valueOf({"A", "B"}, -3, 7), ResultType_Double, "0.5");
    EXPECT_EQ(calls(), (std::vector<std::string>{
                           "VexaUtilArgListAlloc()",
                           "VexaUtilArgListAppendString(arglist#1, \"P1\", \"A\")",
                           "VexaUtilArgListAppendString(arglist#1, \"P2\", \"B\")",
                           "VexaUtilArgListAppendInt(arglist#1, \"Offset1\", -3)",
                           "VexaUtilArgListAppendInt(arglist#1, \"Offset2\", 7)",
                           "VexaUtilArgListAppendDoublePtr(arglist#1, \"DValue\", address)",
                           "VexaUtilStyleGetLowLevelX(arglist#1)",
                           "VexaUtilArgListDealloc(arglist#1)",
                       }));
}

TEST_F(StyleValueTest, AsksAgainForWhatIsNoDouble) {
    m_host.setStyle({"Count"}, int64_t{12});
    expectValue(valueOf({"Count"}), ResultType_Integer, "12");
    EXPECT_EQ(calls(), (std::vector<std::string>{
                           "VexaUtilArgListAlloc()",
                           "VexaUtilArgListAppendString(arglist#1, \"P1\", \"Count\")",
                           "VexaUtilArgListAppendInt(arglist#1, \"Offset1\", 0)",
                           "VexaUtilArgListAppendInt(arglist#1, \"Offset2\", 0)",
                           "VexaUtilArgListAppendDoublePtr(arglist#1, \"DValue\", address)",
                           "VexaUtilStyleGetLowLevelX(arglist#1)",
                           "VexaUtilArgListClear(arglist#1)",
                           "VexaUtilArgListAppendString(arglist#1, \"P1\", \"Count\")",
                           "VexaUtilArgListAppendInt(arglist#1, \"Offset1\", 0)",
                           "VexaUtilArgListAppendInt(arglist#1, \"Offset2\", 0)",
                           "VexaUtilArgListAppendArbParamPtr(arglist#1, \"IValue\", address)",
                           "VexaUtilStyleGetLowLevelX(arglist#1)",
                           "VexaUtilArgListDealloc(arglist#1)",
                       }));
}

TEST_F(StyleValueTest, ReadsTheSetBeforeItReleasesTheList) {
    m_host.setStyle({"ActiveFieldMaps"}, setOf("[1]"));
    valueOf({"ActiveFieldMaps"});
    const std::vector<std::string> functions = m_host.calledFunctions();
    ASSERT_GE(functions.size(), 2u);
    EXPECT_EQ(functions[functions.size() - 2], "VexaUtilSetNextRange");
    EXPECT_EQ(functions.back(), "VexaUtilArgListDealloc");
}

TEST_F(StyleValueTest, PassesSixKeywordsAndLetsTheLastOneDecide) {
    m_host.setStyle({"1", "2", "3", "4", "5", "6"}, std::string("deep"));
    expectValue(valueOf({"1", "2", "3", "4", "5", "6", "7", "Name"}), ResultType_String, "deep");
    for (const std::string& call : calls()) EXPECT_EQ(call.find("\"P7\""), std::string::npos) << call;
}

TEST_F(StyleValueTest, DoesNotTouchTheResultWhenTheHostRefuses) {
    const Value value = valueOf({"Unknown"});
    EXPECT_EQ(value.code, GetValueReturnCode_UnknownPath);
    EXPECT_EQ(value.type, ResultType_None);
    EXPECT_EQ(value.text, "untouched");
    EXPECT_EQ(m_host.calledFunctions().back(), "VexaUtilArgListDealloc");
}

TEST_F(StyleValueTest, PassesOnEveryRefusal) {
    for (const int code : {2, 3}) {
        m_host.failCall("VexaUtilStyleGetLowLevelX", 1, code);
        const Value value = valueOf({"Count"});
        EXPECT_EQ(static_cast<int>(value.code), code);
        EXPECT_EQ(value.type, ResultType_None);
    }
}

TEST_F(StyleValueTest, ConvertsWhateverTheSecondAnswerIs) {
    const struct {
        const char* keyword;
        ResultType_e type;
        const char* text;
    } cases[] = {
        {"Count", ResultType_Integer, "0"}, {"Name", ResultType_String, ""}, {"UseClipPlanes", ResultType_Set, "[]"}};
    for (const auto& c : cases) {
        m_host.failCall("VexaUtilStyleGetLowLevelX", 1, GetValueReturnCode_OtherType);
        m_host.failCall("VexaUtilStyleGetLowLevelX", 2, GetValueReturnCode_NotAvailable);
        const Value value = valueOf({c.keyword});
        EXPECT_EQ(value.code, GetValueReturnCode_NotAvailable) << c.keyword;
        EXPECT_EQ(value.type, c.type) << c.keyword;
        EXPECT_EQ(value.text, c.text) << c.keyword;
    }
}

TEST_F(StyleValueTest, LeavesTheHostsTextAndSetToTheHost) {
    m_host.setStyle({"Name"}, std::string("a"));
    m_host.setStyle({"ActiveFieldMaps"}, setOf("[2]"));
    for (int i = 0; i < 2; ++i) {
        expectValue(valueOf({"Name"}), ResultType_String, "a");
        expectValue(valueOf({"ActiveFieldMaps"}), ResultType_Set, "[2]");
    }
    for (const std::string& function : m_host.calledFunctions()) {
        EXPECT_NE(function, "VexaUtilStringDealloc");
        EXPECT_NE(function, "VexaUtilSetDealloc");
    }
}

TEST_F(StyleValueTest, DoesNotChangeThePath) {
    m_host.setStyle({"A", "B"}, 0.5);
    Path path{"A", "B"};
    Value value;
    getValueAsString(path, 0, 0, value.type, value.code, value.text);
    EXPECT_EQ(path, (Path{"A", "B"}));
}

TEST_F(StyleValueTest, RefusesAnEmptyPathBeforeItAsks) {
    EXPECT_THROW(valueOf({}), std::out_of_range);
    EXPECT_EQ(calls(), std::vector<std::string>{});
}

TEST_F(StyleValueTest, HasNoTypeWhenItRefusesAnEmptyPath) {
    Path empty;
    Value value;
    EXPECT_THROW(getValueAsString(empty, 0, 0, value.type, value.code, value.text), std::out_of_range);
    EXPECT_EQ(value.type, ResultType_None);
    EXPECT_EQ(value.text, "untouched");
}

TEST_F(StyleValueTest, DoesNotAskWithoutAList) {
    m_host.failCall("VexaUtilArgListAlloc");
    const Value value = valueOf({"Count"});
    EXPECT_EQ(value.code, GetValueReturnCode_NotAvailable);
    EXPECT_EQ(value.type, ResultType_None);
    EXPECT_EQ(value.text, "untouched");
    EXPECT_EQ(m_host.calledFunctions(), std::vector<std::string>{"VexaUtilArgListAlloc"});
}

TEST_F(StyleValueTest, DoesNotAskWithAListThatIsIncomplete) {
    for (const char* function :
         {"VexaUtilArgListAppendString", "VexaUtilArgListAppendInt", "VexaUtilArgListAppendDoublePtr"}) {
        m_host.clearCalls();
        m_host.failCall(function);
        const Value value = valueOf({"Count"});
        EXPECT_EQ(value.code, GetValueReturnCode_NotAvailable) << function;
        EXPECT_EQ(value.type, ResultType_None) << function;
        EXPECT_EQ(m_host.calledFunctions().back(), "VexaUtilArgListDealloc") << function;
        for (const std::string& called : m_host.calledFunctions()) EXPECT_NE(called, "VexaUtilStyleGetLowLevelX");
    }
}

TEST_F(StyleValueTest, PassesOnThatMemoryRanOut) {
    m_host.setStyle({"Name"}, std::string(100, 'n'));
    m_host.setKeepsCalls(false);
    Path path{"Name"};
    bool hasThrown = false;
    const long points = tests::sweepAllocations(tests::Failing::Once, [&](long allowed, tests::Failing failing) {
        Value value;
        const tests::FailingAllocator allocator(allowed, failing);
        try {
            getValueAsString(path, 0, 0, value.type, value.code, value.text);
        } catch (const std::bad_alloc&) {
            hasThrown = true;
        }
        return tests::FailingAllocator::hasFailed();
    });
    EXPECT_GT(points, 0);
    EXPECT_TRUE(hasThrown);
}

}  // namespace
}  // namespace vexa::vexautilutil
