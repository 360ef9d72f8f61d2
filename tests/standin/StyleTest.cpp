#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "vexa/InvalidArgumentException.h"
#include "vexa/VexaUtil.h"
#include "vexa/toolbox/Set.h"
#include "vexastandin/Host.h"

namespace vexa::standin {
namespace {

using Path = std::vector<std::string>;

constexpr double kNothing = -1;
constexpr VexaArbParam kNoParam = -1;

// An argument list that lives as long as this.
class List {
public:
    List() = default;
    List(const List&) = delete;
    List& operator=(const List&) = delete;
    ~List() { VexaUtilArgListDealloc(&m_handle); }

    List& path(const Path& keywords) {
        for (std::size_t i = 0; i != keywords.size(); ++i) text(("P" + std::to_string(i + 1)).c_str(), keywords[i]);
        return *this;
    }
    List& text(const char* name, const std::string& value) {
        VexaUtilArgListAppendString(m_handle, name, value.c_str());
        return *this;
    }
    List& integer(const char* name, long value) {
        VexaUtilArgListAppendInt(m_handle, name, value);
        return *this;
    }
    List& number(double& place) {
        VexaUtilArgListAppendDoublePtr(m_handle, "DValue", &place);
        return *this;
    }
    List& param(VexaArbParam& place) {
        VexaUtilArgListAppendArbParamPtr(m_handle, "IValue", &place);
        return *this;
    }
    GetValueReturnCode_e query() { return VexaUtilStyleGetLowLevelX(m_handle); }

private:
    ArgList_s* m_handle = VexaUtilArgListAlloc();
};

struct Number {
    GetValueReturnCode_e code;
    double value = kNothing;
};

struct Param {
    GetValueReturnCode_e code;
    VexaArbParam value = kNoParam;
};

Number numberAt(const Path& path, std::optional<long> offset1 = {}, std::optional<long> offset2 = {}) {
    Number answer{};
    List list;
    list.path(path).number(answer.value);
    if (offset1) list.integer("Offset1", *offset1);
    if (offset2) list.integer("Offset2", *offset2);
    answer.code = list.query();
    return answer;
}

Param paramAt(const Path& path) {
    Param answer{};
    answer.code = List().path(path).param(answer.value).query();
    return answer;
}

const char* textAt(const Path& path) { return reinterpret_cast<const char*>(paramAt(path).value); }

Set_s* setAt(const Path& path) { return reinterpret_cast<Set_s*>(paramAt(path).value); }

std::string styleRefusalOf(const Path& path) {
    Host host;
    try {
        host.setStyle(path, 0.5);
    } catch (const InvalidArgumentException& refusal) {
        return refusal.what();
    }
    return "accepted";
}

// ---- What the host answers

TEST(Style, StoresADouble) {
    Host host;
    host.setStyle({"FIELDMAP", "LINETHICKNESS"}, 0.4);
    const Number answer = numberAt({"FIELDMAP", "LINETHICKNESS"});
    EXPECT_EQ(answer.code, GetValueReturnCode_Ok);
    EXPECT_EQ(answer.value, 0.4);
}

TEST(Style, StoresAnInteger) {
    Host host;
    host.setStyle({"COLOR"}, INT64_MIN);
    const Param answer = paramAt({"COLOR"});
    EXPECT_EQ(answer.code, GetValueReturnCode_Ok);
    EXPECT_EQ(answer.value, INT64_MIN);
}

TEST(Style, StoresWhereATextIs) {
    Host host;
    host.setStyle({"TITLE"}, "wake \xc3\xbc");
    EXPECT_EQ(paramAt({"TITLE"}).code, GetValueReturnCode_Ok);
    EXPECT_STREQ(textAt({"TITLE"}), "wake \xc3\xbc");
}

TEST(Style, StoresTheHandleOfASet) {
    Host host;
    toolbox::Set zones;
    zones.assign("[1-3,7]");
    host.setStyle({"ZONES"}, zones);
    EXPECT_EQ(paramAt({"ZONES"}).code, GetValueReturnCode_Ok);
    EXPECT_EQ(toolbox::Set(setAt({"ZONES"})).toString(), "[1-3,7]");
}

TEST(Style, IsFoundUnderTheLongestPath) {
    Host host;
    host.setStyle({"A", "B", "C", "D", "E", "F"}, 0.5);
    EXPECT_EQ(numberAt({"A", "B", "C", "D", "E", "F"}).value, 0.5);
}

TEST(Style, IgnoresTheCaseOfKeywords) {
    Host host;
    host.setStyle({"FieldMap", "Thickness9"}, 0.5);
    EXPECT_EQ(numberAt({"FIELDMAP", "thickness9"}).value, 0.5);
}

TEST(Style, TellsKeywordsApartThatDifferInNoLetter) {
    Host host;
    host.setStyle({"a{"}, 0.5);
    host.setStyle({"a["}, 1.5);
    EXPECT_EQ(numberAt({"A{"}).value, 0.5);
    EXPECT_EQ(numberAt({"A["}).value, 1.5);
}

TEST(Style, TakesPathsInAnyOrderOfTheirKeywords) {
    Host host;
    host.setStyle({"A", "B"}, 0.5);
    double value = kNothing;
    EXPECT_EQ(List().number(value).text("P2", "B").text("P1", "A").query(), GetValueReturnCode_Ok);
    EXPECT_EQ(value, 0.5);
}

// Only names of keywords must be in order.
TEST(Style, IsFoundByAHostThatMindsTheOrderIfAnotherArgumentIsBetweenTheKeywords) {
    Host host;
    host.answerLike({{"style.setting.anyOrder", "UnknownPath"}});
    host.setStyle({"A", "B"}, 0.5);
    double value = kNothing;
    EXPECT_EQ(List().number(value).text("P1", "A").text("A9", "X").text("P2", "B").query(), GetValueReturnCode_Ok);
    EXPECT_EQ(List().number(value).text("P2", "B").text("P1", "A").query(), GetValueReturnCode_UnknownPath);
}

TEST(Style, StaysWhereItIsUntilItsPathIsSetAgain) {
    Host host;
    host.setStyle({"TITLE"}, "one");
    const char* const text = textAt({"TITLE"});
    host.setStyle({"TITLE", "FONT"}, "two");
    host.setStyle({"OTHER"}, "three");
    EXPECT_STREQ(text, "one");
    host.setStyle({"title"}, "four");
    EXPECT_STREQ(textAt({"TITLE"}), "four");
}

TEST(Style, TakesBackASetWhoseValueIsReplaced) {
    Host host;
    host.setStyle({"ZONES"}, toolbox::Set());
    Set_s* const before = setAt({"ZONES"});
    host.setStyle({"ZONES"}, 5);
    int64_t first = 0;
    int64_t last = 0;
    EXPECT_EQ(VexaUtilSetNextRange(before, 0, &first, &last), 0);
    EXPECT_EQ(host.calls().back().arguments, "unknown, 0, address, address");
}

// ---- Offsets

TEST(StyleOffsets, MakeNoDifferenceToAValueForEveryPair) {
    Host host;
    host.setStyle({"A"}, 0.5);
    EXPECT_EQ(numberAt({"A"}).value, 0.5);
    EXPECT_EQ(numberAt({"A"}, 3, -7).value, 0.5);
}

TEST(StyleOffsets, PreferTheirOwnValue) {
    Host host;
    host.setStyle({"A"}, 2, 3, 0.75);
    host.setStyle({"A"}, 0.5);
    EXPECT_EQ(numberAt({"A"}, 2, 3).value, 0.75);
    EXPECT_EQ(numberAt({"A"}, 3, 2).value, 0.5);
    EXPECT_EQ(numberAt({"A"}, 2).value, 0.5);
}

TEST(StyleOffsets, AreZeroWhenTheyAreMissing) {
    Host host;
    host.setStyle({"A"}, 0, 0, 0.25);
    host.setStyle({"A"}, 1, 0, 0.5);
    host.setStyle({"A"}, 0, 1, 0.75);
    EXPECT_EQ(numberAt({"A"}).value, 0.25);
    EXPECT_EQ(numberAt({"A"}, 1).value, 0.5);
    EXPECT_EQ(numberAt({"A"}, {}, 1).value, 0.75);
}

TEST(StyleOffsets, WithoutAValueHaveNone) {
    Host host;
    host.setStyle({"A"}, 1, 1, 0.5);
    const Number answer = numberAt({"A"});
    EXPECT_EQ(answer.code, GetValueReturnCode_NotAvailable);
    EXPECT_EQ(answer.value, kNothing);
}

// ---- What the host does not answer

TEST(StyleRefusal, TellsAnotherKindAndStoresNothing) {
    Host host;
    host.setStyle({"NUMBER"}, 0.5);
    host.setStyle({"INTEGER"}, 5);
    host.setStyle({"TEXT"}, "five");
    host.setStyle({"SET"}, toolbox::Set());
    for (const char* keyword : {"INTEGER", "TEXT", "SET"}) {
        SCOPED_TRACE(keyword);
        const Number answer = numberAt({keyword});
        EXPECT_EQ(answer.code, GetValueReturnCode_OtherType);
        EXPECT_EQ(answer.value, kNothing);
    }
    EXPECT_EQ(paramAt({"NUMBER"}).code, GetValueReturnCode_OtherType);
    EXPECT_EQ(paramAt({"NUMBER"}).value, kNoParam);
}

TEST(StyleRefusal, TellsPathsWithoutAValueApart) {
    struct Case {
        const char* why;
        Path path;
        GetValueReturnCode_e code;
    };
    const Case cases[] = {
        {"set", {"B", "M", "X"}, GetValueReturnCode_Ok},
        {"leads to a value", {"B", "M"}, GetValueReturnCode_NotAvailable},
        {"leads to one that does", {"B"}, GetValueReturnCode_NotAvailable},
        {"leads beyond", {"B", "M", "X", "Y"}, GetValueReturnCode_UnknownPath},
        {"begins a keyword", {"B", "M", ""}, GetValueReturnCode_UnknownPath},
        {"sorted before", {"A"}, GetValueReturnCode_UnknownPath},
        {"sorted after", {"C"}, GetValueReturnCode_UnknownPath},
        {"a keyword longer", {"BM"}, GetValueReturnCode_UnknownPath},
        {"a keyword between", {"B", "X"}, GetValueReturnCode_UnknownPath},
    };
    Host host;
    host.setStyle({"B", "M", "X"}, 0.5);
    for (const Case& c : cases) EXPECT_EQ(numberAt(c.path).code, c.code) << c.why;
}

TEST(StyleRefusal, KnowsNoPathInAListThatMakesNoQuery) {
    Host host;
    host.setStyle({"A"}, 0.5);
    host.setStyle({"A", "B"}, 0.5);
    double value = kNothing;
    VexaArbParam param = kNoParam;
    EXPECT_EQ(VexaUtilStyleGetLowLevelX(nullptr), GetValueReturnCode_UnknownPath);
    EXPECT_EQ(List().query(), GetValueReturnCode_UnknownPath);
    EXPECT_EQ(List().path({"A"}).query(), GetValueReturnCode_UnknownPath) << "no place for the value";
    EXPECT_EQ(List().number(value).query(), GetValueReturnCode_UnknownPath) << "no path";
    EXPECT_EQ(List().number(value).text("P1", "A").text("P3", "B").query(), GetValueReturnCode_UnknownPath) << "a gap";
    EXPECT_EQ(List().number(value).integer("P1", 1).query(), GetValueReturnCode_UnknownPath) << "an integer keyword";
    EXPECT_EQ(List().path({"A"}).integer("DValue", 1).query(), GetValueReturnCode_UnknownPath) << "no address";
    EXPECT_EQ(List().path({"A"}).number(value).param(param).query(), GetValueReturnCode_UnknownPath) << "two kinds";
    EXPECT_EQ(value, kNothing);
    EXPECT_EQ(param, kNoParam);
}

TEST(SetStyle, RefusesWhatIsNoPath) {
    const std::string expected = "Expected a style path of ";
    EXPECT_EQ(styleRefusalOf({}), expected + "1 to 6 keywords, but got 0");
    EXPECT_EQ(styleRefusalOf({"1", "2", "3", "4", "5", "6", "7"}), expected + "1 to 6 keywords, but got 7");
    EXPECT_EQ(styleRefusalOf({"A", "", "C"}), expected + "keywords, but number 2 is empty");
    EXPECT_EQ(styleRefusalOf({""}), expected + "keywords, but number 1 is empty");
    EXPECT_EQ(styleRefusalOf({"1", "2", "3", "4", "5", "6"}), "accepted");
}

}  // namespace
}  // namespace vexa::standin
