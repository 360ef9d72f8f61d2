#include "vexa/toolbox/Set.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <tuple>
#include <type_traits>
#include <utility>

#include "support/FailingAllocator.h"
#include "support/GlobalLocale.h"
#include "support/VirtualSlots.h"
#include "vexa/InvalidArgumentException.h"
#include "vexa/OutOfMemoryException.h"
#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"

namespace vexa::toolbox {
namespace {

constexpr int64_t kHighest = std::numeric_limits<int64_t>::max();

Set setOf(const std::string& text) {
    Set set;
    set.assign(text);
    return set;
}

std::vector<int64_t> membersOf(const Set& set) { return {set.begin(), set.end()}; }

template <class Operation>
std::string refusalOf(Operation operation) {
    try {
        operation();
    } catch (const InvalidArgumentException& refusal) {
        return refusal.message();
    }
    return "accepted";
}

// Returns `count` single members in ascending order, each two more than the one before, so each is a run.
std::string textOfRuns(int count) {
    std::string text = "[0";
    for (int i = 1; i < count; ++i) text += "," + std::to_string(2 * i);
    return text + "]";
}

// Returns the same runs in descending order.
std::string textOfDescendingRuns(int count) {
    std::string text = "[";
    for (int i = count - 1; i > 0; --i) text += std::to_string(2 * i) + ",";
    return text + "0]";
}

TEST(Set, IsEmptyAtFirst) {
    const Set set;
    EXPECT_TRUE(set.isEmpty());
    EXPECT_EQ(set.size(), 0u);
    EXPECT_EQ(set.toString(), "[]");
    EXPECT_TRUE(set.begin() == set.end());
}

TEST(SetAssign, ReadsTheTextForm) {
    struct Case {
        const char* why;
        const char* text;
        const char* canonical;
    };
    const Case cases[] = {
        {"empty", "[]", "[]"},
        {"empty with blanks", "[ \t ]", "[]"},
        {"one member", "[5]", "[5]"},
        {"the lowest member", "[0]", "[0]"},
        {"the highest member", "[9223372036854775807]", "[9223372036854775807]"},
        {"all members", "[0-9223372036854775807]", "[0-9223372036854775807]"},
        {"the highest members", "[9223372036854775806,9223372036854775807]",
         "[9223372036854775806-9223372036854775807]"},
        {"the highest members, the highest first", "[9223372036854775807,9223372036854775806,0]",
         "[0,9223372036854775806-9223372036854775807]"},
        {"the highest member within a range to it", "[5-9223372036854775807,9223372036854775807,6]",
         "[5-9223372036854775807]"},
        {"eighteen digits, which always fit", "[999999999999999999]", "[999999999999999999]"},
        {"nineteen digits, which may fit", "[1000000000000000000]", "[1000000000000000000]"},
        {"order and repetition are free", "[5,1-3,2]", "[1-3,5]"},
        {"descending", "[5,4,3,1]", "[1,3-5]"},
        {"overlapping ranges", "[1-5,3-9]", "[1-9]"},
        {"overlapping ranges, the higher first", "[3-9,1-5]", "[1-9]"},
        {"a range within another", "[1-9,3-5]", "[1-9]"},
        {"a range within another, out of order", "[3-5,1-9,20]", "[1-9,20]"},
        {"a range within another, then one beyond the inner one", "[1-9,3-5,8-12]", "[1-12]"},
        {"adjoining ranges", "[1-5,6-9]", "[1-9]"},
        {"adjoining ranges, the higher first", "[6-9,1-5]", "[1-9]"},
        {"ranges one apart", "[1-5,7-9]", "[1-5,7-9]"},
        {"two members in a row", "[7,8]", "[7-8]"},
        {"a range of one member", "[4-4]", "[4]"},
        {"out of order with a repetition at the end", "[9,1,9]", "[1,9]"},
        {"a stepped range with blanks", "[ 0 - 10 : 5 ]", "[0,5,10]"},
        {"a step that misses the end", "[1-6:2]", "[1,3,5]"},
        {"a step of one", "[1-5:1]", "[1-5]"},
        {"a step over the whole range", "[1-5:9]", "[1]"},
        {"a step to just the end", "[1-5:4]", "[1,5]"},
        {"a stepped range of one member", "[5-5:2]", "[5]"},
        {"stepped ranges that fill each other", "[0-8:2,1-9:2]", "[0-9]"},
        {"a stepped range at the upper end", "[9223372036854775801-9223372036854775807:3]",
         "[9223372036854775801,9223372036854775804,9223372036854775807]"},
        {"the widest step", "[0-9223372036854775807:9223372036854775807]", "[0,9223372036854775807]"},
        {"leading zeros", "[007]", "[7]"},
        {"more leading zeros than a number has digits", "[0000000000000000000000000000000000012]", "[12]"},
        {"nothing but zeros", "[000]", "[0]"},
        {"leading zeros everywhere", "[00-008:02]", "[0,2,4,6,8]"},
        {"blanks and tabs everywhere", "[\t1 ,\t 2\t- \t4 , 10 - 20\t:\t10\t]", "[1-4,10,20]"},
        {"the example", "[1-3, 5, 10-20:5]", "[1-3,5,10,15,20]"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(setOf(c.text).toString(), c.canonical) << c.why << ": " << c.text;
    }
}

TEST(SetAssign, SaysWhatItExpectedAndWhere) {
    struct Case {
        const char* why;
        std::string text;
        const char* refusal;
    };
    const Case cases[] = {
        {"no text", "", "Expected '[' at column 1 of set: "},
        {"no brackets", "1", "Expected '[' at column 1 of set: 1"},
        {"other brackets", "(1)", "Expected '[' at column 1 of set: (1)"},
        {"a blank before the bracket", " [1]", "Expected '[' at column 1 of set:  [1]"},
        {"only the opening bracket", "[", "Expected a number at column 2 of set: ["},
        {"a bracket left open", "[1", "Expected '-', ',' or ']' at column 3 of set: [1"},
        {"a bracket left open after a comma", "[1,", "Expected a number at column 4 of set: [1,"},
        {"a bracket left open after a range", "[1-2", "Expected ':', ',' or ']' at column 5 of set: [1-2"},
        {"a bracket left open after a step", "[1-2:1", "Expected ',' or ']' at column 7 of set: [1-2:1"},
        {"text behind", "[1]x", "Expected nothing after ']' at column 4 of set: [1]x"},
        {"a blank behind", "[1] ", "Expected nothing after ']' at column 4 of set: [1] "},
        {"text behind the empty set", "[]]", "Expected nothing after ']' at column 3 of set: []]"},
        {"a set in a set", "[[1]]", "Expected a number at column 2 of set: [[1]]"},
        {"a trailing comma", "[1,]", "Expected a number at column 4 of set: [1,]"},
        {"a leading comma", "[,1]", "Expected a number at column 2 of set: [,1]"},
        {"a doubled comma", "[1,,2]", "Expected a number at column 4 of set: [1,,2]"},
        {"nothing but a comma", "[ , ]", "Expected a number at column 3 of set: [ , ]"},
        {"no comma", "[1 2]", "Expected '-', ',' or ']' at column 4 of set: [1 2]"},
        {"no comma after a range", "[1-2 3]", "Expected ':', ',' or ']' at column 6 of set: [1-2 3]"},
        {"a reversed range", "[5-4]", "Expected a range end of 5 or more at column 4 of set: [5-4]"},
        {"a reversed range with blanks", "[ 3 -  1 ]",
         "Expected a range end of 3 or more at column 8 of set: [ 3 -  1 ]"},
        {"a range without an end", "[1-]", "Expected a number at column 4 of set: [1-]"},
        {"a range without a begin", "[-1]", "Expected a number at column 2 of set: [-1]"},
        {"a range of three", "[1-2-3]", "Expected ':', ',' or ']' at column 5 of set: [1-2-3]"},
        {"a plus sign", "[+1]", "Expected a number at column 2 of set: [+1]"},
        {"a signed range end", "[1--2]", "Expected a number at column 4 of set: [1--2]"},
        {"a step of zero", "[1-5:0]", "Expected a step of 1 or more at column 6 of set: [1-5:0]"},
        {"a step of many zeros", "[1-5:00]", "Expected a step of 1 or more at column 6 of set: [1-5:00]"},
        {"a step without a range", "[1:2]", "Expected '-', ',' or ']' at column 3 of set: [1:2]"},
        {"a step without a number", "[1-5:]", "Expected a number at column 6 of set: [1-5:]"},
        {"two steps", "[1-5:2:2]", "Expected ',' or ']' at column 7 of set: [1-5:2:2]"},
        {"one over the highest member", "[9223372036854775808]",
         "Expected a number up to 9223372036854775807 at column 2 of set: [9223372036854775808]"},
        {"over 64 bits", "[1, 18446744073709551617]",
         "Expected a number up to 9223372036854775807 at column 5 of set: [1, 18446744073709551617]"},
        {"a range end too high", "[1-9223372036854775808]",
         "Expected a number up to 9223372036854775807 at column 4 of set: [1-9223372036854775808]"},
        {"a step too high", "[1-5:9223372036854775808]",
         "Expected a number up to 9223372036854775807 at column 6 of set: [1-5:9223372036854775808]"},
        {"a fraction", "[1.5]", "Expected '-', ',' or ']' at column 3 of set: [1.5]"},
        {"a hexadecimal number", "[0x1]", "Expected '-', ',' or ']' at column 3 of set: [0x1]"},
        {"a word", "[all]", "Expected a number at column 2 of set: [all]"},
        {"a line break", "[1,\n2]", "Expected a number at column 4 of set: [1,\n2]"},
        {"columns are bytes", "[\xc3\xa9]", "Expected a number at column 2 of set: [\xc3\xa9]"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(refusalOf([&] { setOf(c.text); }), c.refusal) << c.why;
    }
}

TEST(SetAssign, RefusesANulCharacterLikeAnyOther) {
    using namespace std::string_literals;
    EXPECT_EQ(refusalOf([] { setOf("[1\0]"s); }), "Expected '-', ',' or ']' at column 3 of set: [1\0]"s);
    EXPECT_EQ(refusalOf([] { setOf("[1]\0"s); }), "Expected nothing after ']' at column 4 of set: [1]\0"s);
}

TEST(SetAssign, QuotesALongSetOnlyAroundTheColumn) {
    struct Case {
        const char* why;
        std::string text;
        std::string quoted;
    };
    const auto repeated = [](const std::string& text, int times) {
        std::string result;
        for (int i = 0; i < times; ++i) result += text;
        return result;
    };
    const std::string sixty = "x" + repeated("1,2,3,4,5,", 6).substr(1);
    const std::string items = repeated("1,2,3,4,5,", 20);
    const Case cases[] = {
        {"a short text is quoted whole wherever the column", "[" + items.substr(0, 50),
         "52 of set: [" + items.substr(0, 50)},
        {"cut by one byte in front", "[" + items.substr(0, 60), "62 of set: ..." + items.substr(0, 60)},
        {"sixty bytes are quoted whole", sixty, "1 of set: " + sixty},
        {"sixty-one are cut", sixty + "6", "1 of set: " + sixty + "..."},
        {"cut behind", "[x" + items, "2 of set: " + ("[x" + items).substr(0, 60) + "..."},
        {"cut on both sides", "[" + items + "x" + items,
         "202 of set: ..." + repeated("1,2,3,4,5,", 3) + "x" + repeated("1,2,3,4,5,", 3).substr(0, 29) + "..."},
        {"cut in front", "[" + items, "202 of set: ..." + repeated("1,2,3,4,5,", 6)},
    };
    for (const Case& c : cases) {
        const std::string refusal = refusalOf([&] { setOf(c.text); });
        ASSERT_NE(refusal.find(" at column "), std::string::npos) << c.why << ": " << refusal;
        EXPECT_EQ(refusal.substr(refusal.find(" at column ") + 11), c.quoted) << c.why;
    }
}

TEST(SetAssign, ReplacesTheMembers) {
    Set set = setOf("[1-3]");
    set.assign("[7]");
    EXPECT_EQ(set.toString(), "[7]");
}

TEST(SetAssign, LeavesTheSetAsItWasWhenRefused) {
    Set set = setOf("[1-3]");
    for (const char* text : {"", "[7,8", "[9,7,8-2]", "[7]x"}) {
        EXPECT_THROW(set.assign(text), InvalidArgumentException) << text;
        EXPECT_EQ(set.toString(), "[1-3]") << text;
    }
}

TEST(SetAssign, RefusalCanBeCaughtAsAStandardException) {
    try {
        setOf("[");
        FAIL() << "accepted";
    } catch (const std::exception& refusal) {
        EXPECT_STREQ(refusal.what(), "Expected a number at column 2 of set: [");
    }
}

TEST(SetAssign, ExpandsSteppedRangesToTheirLimitInAll) {
    // The first range contains the stepped members, so the set stays a single run and needs little memory.
    EXPECT_EQ(setOf("[0-33554430,0-33554430:2]").size(), 33554431u);
    EXPECT_EQ(setOf("[0-33554430,0-16777214:2,0-16777214:2]").size(), 33554431u);
}

TEST(SetAssign, RefusesSteppedRangesOverTheirLimit) {
    const std::string limit = "Expected at most 16777216 members in stepped ranges at column ";
    struct Case {
        const char* why;
        std::string text;
        const char* column;
    };
    const Case cases[] = {
        {"one more in one range", "[0-33554430,0-33554432:2]", "13"},
        {"one more in a range of its own", "[0-33554430,0-33554430:2,5-5:2]", "26"},
        {"one more after one range", "[0-33554430,5-5:2,0-33554430:2]", "19"},
        {"one more after two ranges", "[0-33554430,0-2:2,0-2:2,0-33554424:2]", "25"},
        {"a short text for very many", "[ 0-9223372036854775807:2]", "3"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(refusalOf([&] { setOf(c.text); }), limit + c.column + " of set: " + c.text) << c.why;
    }
}

TEST(SetAssign, LimitsNoRangeWithAStepOfOne) { EXPECT_EQ(setOf("[0-9223372036854775807:1]").ranges().size(), 1u); }

TEST(SetAssign, SortsManyRunsOutOfOrder) {
    const std::string ascending = textOfRuns(5000);
    EXPECT_EQ(setOf(textOfDescendingRuns(5000)).toString(), ascending);
    EXPECT_EQ(setOf("[9223372036854775807," + textOfDescendingRuns(5000).substr(1)).size(), 5001u);
}

TEST(SetAssign, SortsRangesThatBeginAlike) {
    for (int count = 1; count <= 300; ++count) {
        std::string text = "[";
        for (int i = 0; i < count; ++i) text += "7,5,";
        ASSERT_EQ(setOf(text + "5]").toString(), "[5,7]") << count;
    }
}

TEST(SetAssign, SortsManyRangesOfAnySize) {
    std::mt19937_64 random(1);
    Set inserted;
    std::string text = "[9223372036854775807";
    inserted.insert(kHighest);
    for (int i = 0; i < 2000; ++i) {
        const auto first = static_cast<int64_t>(random() >> (1 + i % 63));
        const int64_t last = first + std::min<int64_t>(kHighest - first, i % 10);
        text += "," + std::to_string(first) + "-" + std::to_string(last);
        inserted.insert(first, last);
    }
    EXPECT_EQ(setOf(text + "]"), inserted);
}

TEST(SetAssign, SortsManyMembersOfAnyNumberOfBits) {
    std::mt19937_64 random(2);
    for (int bits = 0; bits <= 63; ++bits) {
        Set inserted;
        std::string text = "[0";
        inserted.insert(0);
        for (int i = 0; i < 300; ++i) {
            const auto member = static_cast<int64_t>(bits == 0 ? 0 : random() >> (64 - bits));
            text += "," + std::to_string(member);
            inserted.insert(member);
        }
        EXPECT_EQ(setOf(text + "]"), inserted) << bits;
    }
}

TEST(SetAssign, IgnoresTheLocale) {
    const tests::GlobalLocale locale(new tests::GroupedNumbers);
    EXPECT_EQ(setOf("[1234567-7654321]").toString(), "[1234567-7654321]");
    EXPECT_EQ(refusalOf([] { setOf("[7654321-1234567]"); }),
              "Expected a range end of 7654321 or more at column 10 of set: [7654321-1234567]");
}

// Returns true if assign() throws when allocations fail. The caller checks the set.
template <class Exception>
bool throwsWhenMemoryFails(Set& set, const std::string& text, long allowed, tests::Failing failing) {
    std::string argument = text;
    bool thrown = false;
    const tests::FailingAllocator allocator(allowed, failing);
    try {
        set.assign(std::move(argument));
    } catch (const Exception&) {
        thrown = true;
    }
    return thrown;
}

TEST(SetAssign, ReportsMemoryExhaustionAndLeavesTheSetAsItWas) {
    const std::string texts[] = {"[1-3,7]",
                                 "[9,7-8,1-3]",
                                 "[0-400:2]",
                                 textOfRuns(3000),
                                 textOfDescendingRuns(3000),
                                 "[1,2,3 refused, with a message]"};
    for (const std::string& text : texts) {
        for (const tests::Failing failing : {tests::Failing::Once, tests::Failing::EverAfter}) {
            Set set = setOf("[5,1-3]");
            const long points = tests::sweepAllocations(failing, [&](long allowed, tests::Failing how) {
                const long before = tests::FailingAllocator::liveBlocks();
                bool thrown = false;
                try {
                    thrown = throwsWhenMemoryFails<OutOfMemoryException>(set, text, allowed, how);
                } catch (const InvalidArgumentException&) {}
                const bool failed = tests::FailingAllocator::hasFailed();
                EXPECT_EQ(thrown, failed) << allowed;
                if (failed) {
                    EXPECT_EQ(set.toString(), "[1-3,5]") << allowed;
                    EXPECT_EQ(tests::FailingAllocator::liveBlocks(), before) << allowed;
                }
                return failed;
            });
            EXPECT_GT(points, 0) << text.substr(0, 20);
        }
    }
}

TEST(SetAssign, SaysOutOfMemory) {
    Set set;
    std::string message;
    message.reserve(40);
    {
        const tests::FailingAllocator allocator(0, tests::Failing::EverAfter);
        try {
            set.assign("[1]");
        } catch (const OutOfMemoryException& exhaustion) {
            message = exhaustion.what();
        }
    }
    EXPECT_EQ(message, "Out of memory");
}

TEST(SetToString, IsCanonical) {
    EXPECT_EQ(setOf("[1,2,3,5]").toString(), "[1-3,5]");
    EXPECT_EQ(setOf("[8,7]").toString(), "[7-8]");
    EXPECT_EQ(setOf("[]").toString(), "[]");
}

TEST(SetToString, WritesMoreThanOneChunkOfText) {
    const std::string text = textOfRuns(3000);
    EXPECT_EQ(setOf(text).toString(), text);
}

TEST(SetToString, WritesTheLongestRunsWhereverTheyFall) {
    // Each run has 39 characters and a comma. Each member before the runs shifts them by three characters, so the runs
    // cross the ends of the writer's chunks at every position.
    for (int before = 0; before < 40; ++before) {
        std::string text = "[0";
        for (int i = 0; i < before; ++i) text += "," + std::to_string(11 + 2 * i);
        for (int64_t first = 1000000000000000000; first < 1000000000000003000; first += 10) {
            text += "," + std::to_string(first) + "-" + std::to_string(first + 5);
        }
        text += "]";
        EXPECT_EQ(setOf(text).toString(), text) << before;
    }
}

TEST(SetToString, WritesEveryNumberOfDigits) {
    Set set;
    std::string text = "[0";
    set.insert(0);
    const auto insert = [&](int64_t member) {
        set.insert(member);
        text += "," + std::to_string(member);
    };
    for (int64_t power = 10; power < kHighest / 10; power *= 10) {
        insert(power / 2);
        insert(power - 2);
        insert(power);
    }
    insert(kHighest - 20000);
    insert(kHighest);
    EXPECT_EQ(set.toString(), text + "]");
}

TEST(Set, KeepsRunsNotMembers) {
    const Set set = setOf("[1-1000000000]");
    EXPECT_EQ(set.ranges(), (std::vector<Set::Range>{{1, 1000000000}}));
    EXPECT_EQ(set.size(), 1000000000u);
}

TEST(Set, CountsEveryPossibleMember) {
    EXPECT_EQ(setOf("[0-9223372036854775807]").size(), uint64_t{1} << 63);
    EXPECT_EQ(setOf("[1-3,5]").size(), 4u);
}

TEST(Set, ContainsItsMembersAndNothingElse) {
    const Set set = setOf("[1-3,5,9223372036854775807]");
    for (const int64_t member : {int64_t{1}, int64_t{2}, int64_t{3}, int64_t{5}, kHighest}) {
        EXPECT_TRUE(set.contains(member)) << member;
    }
    for (const int64_t other : {int64_t{0}, int64_t{4}, int64_t{6}, kHighest - 1, int64_t{-1}, -kHighest - 1}) {
        EXPECT_FALSE(set.contains(other)) << other;
    }
    EXPECT_FALSE(Set().contains(0));
}

TEST(Set, ClearRemovesAllMembers) {
    Set set = setOf("[1-3]");
    set.clear();
    EXPECT_TRUE(set.isEmpty());
    EXPECT_EQ(set, Set());
}

TEST(SetInsert, JoinsWhatItOverlapsOrAdjoins) {
    struct Case {
        const char* why;
        const char* before;
        int64_t first;
        int64_t last;
        const char* after;
    };
    const Case cases[] = {
        {"into the empty set", "[]", 5, 7, "[5-7]"},
        {"in front", "[10]", 5, 7, "[5-7,10]"},
        {"behind", "[1]", 5, 7, "[1,5-7]"},
        {"between", "[1,10]", 5, 7, "[1,5-7,10]"},
        {"adjoining below", "[8-9]", 5, 7, "[5-9]"},
        {"adjoining above", "[3-4]", 5, 7, "[3-7]"},
        {"filling a gap", "[4,8]", 5, 7, "[4-8]"},
        {"nearly filling a gap", "[3,9]", 5, 7, "[3,5-7,9]"},
        {"over many runs", "[1,5,7,9,20]", 4, 10, "[1,4-10,20]"},
        {"within a run", "[1-9]", 5, 7, "[1-9]"},
        {"the same run", "[5-7]", 5, 7, "[5-7]"},
        {"the lowest member", "[1]", 0, 0, "[0-1]"},
        {"the highest member", "[9223372036854775806]", kHighest, kHighest,
         "[9223372036854775806-9223372036854775807]"},
        {"up to the highest member, next to it", "[9223372036854775807]", 5, kHighest - 1, "[5-9223372036854775807]"},
        {"everything", "[0,5,9223372036854775807]", 0, kHighest, "[0-9223372036854775807]"},
    };
    for (const Case& c : cases) {
        Set set = setOf(c.before);
        set.insert(c.first, c.last);
        EXPECT_EQ(set.toString(), c.after) << c.why;
    }
}

TEST(SetInsert, AddsOneMember) {
    Set set;
    set.insert(3);
    set.insert(5);
    set.insert(4);
    EXPECT_EQ(set.toString(), "[3-5]");
}

TEST(SetErase, CutsTheRunsThatItOverlaps) {
    struct Case {
        const char* why;
        const char* before;
        int64_t first;
        int64_t last;
        const char* after;
    };
    const Case cases[] = {
        {"from the empty set", "[]", 5, 7, "[]"},
        {"what is not there", "[4,8]", 5, 7, "[4,8]"},
        {"a whole run", "[5-7]", 5, 7, "[]"},
        {"the front of a run", "[5-9]", 5, 7, "[8-9]"},
        {"the back of a run", "[3-7]", 5, 7, "[3-4]"},
        {"the middle of a run", "[4-8]", 5, 7, "[4,8]"},
        {"the middle of a run among others", "[1,4-8,10]", 5, 7, "[1,4,8,10]"},
        {"parts of two runs", "[1-5,7-9]", 5, 7, "[1-4,8-9]"},
        {"parts of two runs and all between", "[1-5,6,7-9]", 3, 8, "[1-2,9]"},
        {"the back of one run and the next", "[1-5,7]", 4, 7, "[1-3]"},
        {"one run and the front of the next", "[5,7-9]", 5, 7, "[8-9]"},
        {"the highest member", "[0-9223372036854775807]", kHighest, kHighest, "[0-9223372036854775806]"},
        {"the lowest member", "[0-9223372036854775807]", 0, 0, "[1-9223372036854775807]"},
        {"everything", "[0,5,9223372036854775807]", 0, kHighest, "[]"},
    };
    for (const Case& c : cases) {
        Set set = setOf(c.before);
        set.erase(c.first, c.last);
        EXPECT_EQ(set.toString(), c.after) << c.why;
    }
}

TEST(SetErase, RemovesOneMember) {
    Set set = setOf("[3-5]");
    set.erase(4);
    set.erase(7);
    EXPECT_EQ(set.toString(), "[3,5]");
}

TEST(Set, RefusesMembersBelowZeroAndReversedRanges) {
    struct Case {
        int64_t first;
        int64_t last;
        const char* refusal;
    };
    const Case cases[] = {
        {-1, 5, "Expected a set member of 0 or more, but got -1"},
        {5, -2, "Expected a set member of 0 or more, but got -2"},
        {-kHighest - 1, -1, "Expected a set member of 0 or more, but got -9223372036854775808"},
        {5, 4, "Expected a range in ascending order, but got 5 to 4"},
    };
    Set set = setOf("[0-9]");
    for (const Case& c : cases) {
        EXPECT_EQ(refusalOf([&] { set.insert(c.first, c.last); }), c.refusal);
        EXPECT_EQ(refusalOf([&] { set.erase(c.first, c.last); }), c.refusal);
    }
    EXPECT_EQ(refusalOf([&] { set.insert(-1); }), cases[0].refusal);
    EXPECT_EQ(refusalOf([&] { set.erase(-1); }), cases[0].refusal);
    EXPECT_EQ(set.toString(), "[0-9]");
}

TEST(Set, ChangesNothingWhenMemoryFails) {
    const auto unchangedBy = [](auto change) {
        return tests::sweepAllocations(tests::Failing::Once, [&](long allowed, tests::Failing failing) {
            const Set read = setOf("[1-3,5-9]");
            Set set = read;  // a copy has no spare capacity
            bool thrown = false;
            {
                const tests::FailingAllocator allocator(allowed, failing);
                try {
                    change(set);
                } catch (const std::bad_alloc&) {
                    thrown = true;
                }
            }
            const bool failed = tests::FailingAllocator::hasFailed();
            EXPECT_EQ(thrown, failed);
            EXPECT_EQ(set == setOf("[1-3,5-9]"), failed);
            return failed;
        });
    };
    EXPECT_GT(unchangedBy([](Set& set) { set.insert(20); }), 0);
    EXPECT_GT(unchangedBy([](Set& set) { set.erase(7); }), 0);
}

TEST(Set, IteratesOverItsMembersInAscendingOrder) {
    EXPECT_EQ(membersOf(setOf("[5,1-3]")), (std::vector<int64_t>{1, 2, 3, 5}));
    EXPECT_EQ(membersOf(setOf("[9223372036854775806-9223372036854775807]")),
              (std::vector<int64_t>{kHighest - 1, kHighest}));
}

TEST(SetIterator, IsAForwardIterator) {
    using Traits = std::iterator_traits<Set::const_iterator>;
    EXPECT_TRUE((std::is_same_v<Traits::iterator_category, std::forward_iterator_tag>));
    const Set set = setOf("[1,3]");
    Set::const_iterator at = set.begin();
    EXPECT_EQ(*at++, 1);
    EXPECT_EQ(*at, 3);
    EXPECT_TRUE(at != set.begin());
    EXPECT_TRUE(++at == set.end());
    EXPECT_TRUE(Set::const_iterator() == Set::const_iterator());
}

TEST(SetIterator, StandsElsewhereOnAnotherMemberOfTheSameRun) {
    const Set set = setOf("[1-3]");
    EXPECT_FALSE(std::next(set.begin()) == set.begin());
    EXPECT_TRUE(std::next(set.begin()) == std::next(set.begin()));
}

TEST(Set, ShowsItsRuns) {
    EXPECT_EQ(setOf("[5,1-3]").ranges(), (std::vector<Set::Range>{{1, 3}, {5, 5}}));
    EXPECT_TRUE((Set::Range{1, 3} != Set::Range{1, 4}));
    EXPECT_TRUE((Set::Range{1, 3} != Set::Range{0, 3}));
}

TEST(Set, EqualsASetWithTheSameMembersHoweverMade) {
    Set set = setOf("[1-9]");
    set.erase(4, 8);
    EXPECT_TRUE(set == setOf("[9,3,1-2]"));
    EXPECT_FALSE(set != setOf("[9,3,1-2]"));
    EXPECT_TRUE(set != setOf("[1-3]"));
    EXPECT_FALSE(set == Set());
}

TEST(Set, CopiesAreIndependent) {
    Set source = setOf("[1-3]");
    Set copy(source);
    Set assigned;
    assigned = source;
    source.insert(9);
    copy.erase(1);
    EXPECT_EQ(source.toString(), "[1-3,9]");
    EXPECT_EQ(copy.toString(), "[2-3]");
    EXPECT_EQ(assigned.toString(), "[1-3]");
}

TEST(Set, MovesItsMembersWithoutAllocating) {
    Set source = setOf("[1-3]");
    Set target;
    {
        const tests::FailingAllocator allocator(0, tests::Failing::EverAfter);
        Set between(std::move(source));
        target = std::move(between);
    }
    EXPECT_EQ(target.toString(), "[1-3]");
}

TEST(Set, IsUnchangedWhenMovedToItself) {
    Set set = setOf("[1-3,7]");
    Set& itself = set;
    set = std::move(itself);
    EXPECT_EQ(set.toString(), "[1-3,7]");
}

TEST(Set, IsEmptyAfterItsMembersMovedToANewSet) {
    Set source = setOf("[1-3,7]");
    const Set taken(std::move(source));
    EXPECT_EQ(source, Set());
    EXPECT_EQ(taken.toString(), "[1-3,7]");
}

TEST(Set, IsEmptyAfterItsMembersMovedToAnExistingSet) {
    Set source = setOf("[1-3,7]");
    Set target = setOf("[5]");
    target = std::move(source);
    EXPECT_EQ(source, Set());
    EXPECT_EQ(target.toString(), "[1-3,7]");
}

TEST(Set, CanBeUsedAfterItsMembersMoved) {
    Set source = setOf("[1-3,7]");
    const Set taken(std::move(source));
    source.insert(4);
    EXPECT_EQ(source.toString(), "[4]");
}

TEST(Set, ItsVirtualOperationsFollowTheDestructorInOrder) {
    EXPECT_TRUE(std::has_virtual_destructor_v<Set>);
    EXPECT_EQ(tests::slotOf(&Set::clear), 2);
    EXPECT_EQ(tests::slotOf(&Set::assign), 3);
    EXPECT_EQ(tests::slotOf(&Set::toString), 4);
}

TEST(Set, CallsTheOverridesOfADerivedSet) {
    struct Recorded : Set {
        explicit Recorded(std::string& calls) : m_calls(calls) {}
        ~Recorded() override { m_calls += "~"; }
        void clear() override { m_calls += "clear "; }
        void assign(std::string text) override { m_calls += "assign" + text + " "; }
        std::string toString() const override { return "[0]"; }
        std::string& m_calls;
    };
    std::string calls;
    std::unique_ptr<Set> set = std::make_unique<Recorded>(calls);
    set->clear();
    set->assign("[1]");
    EXPECT_EQ(set->toString(), "[0]");
    set.reset();
    EXPECT_EQ(calls, "clear assign[1] ~");
}

// A set in the stand-in host.
class HostSet {
public:
    HostSet() : m_handle(VexaUtilSetAlloc()) {}
    HostSet(const HostSet&) = delete;
    HostSet& operator=(const HostSet&) = delete;
    ~HostSet() { VexaUtilSetDealloc(&m_handle); }
    void insert(int64_t first, int64_t last) { EXPECT_EQ(VexaUtilSetInsert(m_handle, first, last), 1); }
    Set_s* handle() { return m_handle; }

private:
    Set_s* m_handle;
};

TEST(SetOfHostSet, CopiesItsMembers) {
    const standin::Host host;
    HostSet hostSet;
    EXPECT_TRUE(Set(hostSet.handle()).isEmpty());
    hostSet.insert(5, 5);
    hostSet.insert(1, 3);
    EXPECT_EQ(Set(hostSet.handle()).toString(), "[1-3,5]");
}

TEST(SetOfHostSet, CopiesUpToTheHighestMember) {
    const standin::Host host;
    HostSet hostSet;
    hostSet.insert(0, 0);
    hostSet.insert(kHighest - 1, kHighest);
    EXPECT_EQ(Set(hostSet.handle()).toString(), "[0,9223372036854775806-9223372036854775807]");
}

TEST(SetOfHostSet, LeavesTheHandleToItsOwner) {
    const standin::Host host;
    auto hostSet = std::make_unique<HostSet>();
    hostSet->insert(1, 3);
    Set copy(hostSet->handle());
    copy.insert(9);
    EXPECT_EQ(Set(hostSet->handle()).toString(), "[1-3]");
    hostSet.reset();
    EXPECT_EQ(copy.toString(), "[1-3,9]");
}

TEST(SetOfHostSet, AsksForEachRunFromRightBehindTheOneBefore) {
    const standin::Host host;
    HostSet hostSet;
    hostSet.insert(1, 3);
    hostSet.insert(7, 7);
    const std::size_t before = host.calls().size();
    const Set copy(hostSet.handle());
    std::string asked;
    for (const standin::Call& call : host.calls()) {
        if (call.number > before) asked += call.arguments + '\n';
    }
    EXPECT_EQ(asked, "set#1, 0, address, address\nset#1, 4, address, address\nset#1, 8, address, address\n");
}

TEST(SetOfHostSet, EndsWhereTheHostGivesNoRun) {
    // The failing call returns 1 and stores no run: the outputs have no run at first, later the previous run.
    const char* const expected[] = {"[]", "[3]", "[3,5]"};
    for (std::size_t call = 1; call <= std::size(expected); ++call) {
        standin::Host host;
        HostSet hostSet;
        for (const int64_t member : {3, 5, 9}) hostSet.insert(member, member);
        host.failCall("VexaUtilSetNextRange", call, 1);
        EXPECT_EQ(Set(hostSet.handle()).toString(), expected[call - 1]);
    }
}

TEST(SetOfHostSet, TakesANullHandleForTheEmptySet) {
    const standin::Host host;
    EXPECT_TRUE(Set(static_cast<Set_s*>(nullptr)).isEmpty());
    EXPECT_TRUE(host.calls().empty()) << "the host takes no null handles";
    EXPECT_FALSE((std::is_convertible_v<Set_s*, Set>));
}

// A change: true to insert, false to erase; the range's first member; the number of members after it.
using Change = std::tuple<bool, int, int>;

rc::Gen<std::vector<Change>> someChanges() {
    return rc::gen::container<std::vector<Change>>(
        rc::gen::tuple(rc::gen::arbitrary<bool>(), rc::gen::inRange(0, 64), rc::gen::inRange(0, 9)));
}

void apply(const Change& change, int64_t base, Set& set, std::set<int64_t>& members) {
    const auto [inserts, begin, more] = change;
    const int64_t first = base + begin;
    const int64_t last = first + more;
    if (inserts) {
        set.insert(first, last);
        for (int64_t i = 0; i <= more; ++i) members.insert(first + i);
    } else {
        set.erase(first, last);
        for (int64_t i = 0; i <= more; ++i) members.erase(first + i);
    }
}

bool isCanonical(const std::vector<Set::Range>& runs) {
    for (std::size_t i = 0; i < runs.size(); ++i) {
        if (runs[i].first < 0 || runs[i].last < runs[i].first) return false;
        if (i > 0 && runs[i].first - 1 <= runs[i - 1].last) return false;
    }
    return true;
}

RC_GTEST_PROP(SetProperty, AgreesWithASetOfMembers, ()) {
    const int64_t base = *rc::gen::element<int64_t>(0, 1000, kHighest - 71);
    Set set;
    std::set<int64_t> members;
    for (const Change& change : *someChanges()) {
        apply(change, base, set, members);
        RC_ASSERT(isCanonical(set.ranges()));
    }
    RC_ASSERT(membersOf(set) == std::vector<int64_t>(members.begin(), members.end()));
    RC_ASSERT(set.size() == members.size());
    RC_ASSERT(set.isEmpty() == members.empty());
    for (int64_t i = 0; i <= 71; ++i) RC_ASSERT(set.contains(base + i) == (members.count(base + i) == 1));
}

RC_GTEST_PROP(SetProperty, IsReadBackUnchanged, ()) {
    const int64_t base = *rc::gen::element<int64_t>(0, 1000, kHighest - 71);
    Set set;
    std::set<int64_t> members;
    for (const Change& change : *someChanges()) apply(change, base, set, members);
    const Set copy = setOf(set.toString());
    RC_ASSERT(copy == set);
    RC_ASSERT(copy.toString() == set.toString());
}

// An item: first member, distance to the last member, step.
using Item = std::tuple<int, int, int>;

RC_GTEST_PROP(SetProperty, ReadsItemsInAnyOrderAndWithAnyBlanks, ()) {
    const auto items = *rc::gen::container<std::vector<Item>>(
        rc::gen::tuple(rc::gen::inRange(0, 200), rc::gen::inRange(0, 30), rc::gen::inRange(1, 6)));
    const auto blank = [] { return *rc::gen::element<std::string>("", "", " ", "\t", " \t "); };
    std::string text = "[" + blank();
    std::set<int64_t> members;
    for (const auto& [first, more, step] : items) {
        if (text.find_first_of("0123456789") != std::string::npos) text += "," + blank();
        text += std::to_string(first) + blank();
        if (more > 0 || step > 1) text += "-" + blank() + std::to_string(first + more) + blank();
        if (step > 1) text += ":" + blank() + std::to_string(step) + blank();
        for (int member = first; member <= first + more; member += step) members.insert(member);
    }
    const Set set = setOf(text + "]");
    RC_ASSERT(isCanonical(set.ranges()));
    RC_ASSERT(membersOf(set) == std::vector<int64_t>(members.begin(), members.end()));
}

RC_GTEST_PROP(SetProperty, EveryTextIsReadOrRefused, ()) {
    const auto text =
        "[" + *rc::gen::container<std::string>(rc::gen::elementOf(std::string("0123459,,,--: \t]"))) + "]";
    Set set = setOf("[1-3]");
    try {
        set.assign(text);
        RC_ASSERT(setOf(set.toString()) == set);
    } catch (const InvalidArgumentException&) {
        RC_ASSERT(set.toString() == "[1-3]");
    }
}

}  // namespace
}  // namespace vexa::toolbox
