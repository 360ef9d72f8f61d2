// Tests files that only an attacker or a broken program writes. The runner must run each file or refuse it with a clear
// message. Its time must be linear in the size, and its memory a small multiple of the size.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <ostream>
#include <string>
#include <vector>

#include "e2e/RunProgram.h"
#include "load/LargeTexts.h"
#include "load/Load.h"
#include "load/Resources.h"
#include "support/TemporaryFolder.h"

namespace vexa::e2e {
namespace {

using load::counted;
using load::filled;
using load::repeated;

constexpr std::size_t kMostSaid = 1000;

enum class Kind_e { Macro, Style };

// A kind of file, and the expected exit status and start of the message.
struct Hostile {
    const char* name;
    Kind_e kind;
    std::string (*text)(std::size_t size);
    int status;
    const char* said;   // the message after the file's name
    long memoryFactor;  // the allowed memory divided by the size of the file
    long moreKiB = 65536;

    friend std::ostream& operator<<(std::ostream& out, const Hostile& hostile) { return out << hostile.name; }
};

ProgramResult resultOf(const Hostile& hostile, std::size_t size) {
    const tests::TemporaryFolder folder;
    folder.write("hostile", hostile.text(size));
    load::forgetPeakMemory();  // frees the text's memory, which would count for the program
    Program program;
    program.folder = folder.path();
    if (hostile.kind == Kind_e::Macro) {
        program.arguments = {VEXA_STANDIN, "run", "hostile", "--addon", ADDON_ONE};
    } else {
        program.arguments = {VEXA_STANDIN, "style", "--style", "hostile", "NAME"};
    }
    return runProgram(program);
}

class HostileFile : public testing::TestWithParam<Hostile> {};

TEST_P(HostileFile, IsRunOrRefused) {
    const std::size_t size = load::largeSize();
    const ProgramResult result = resultOf(GetParam(), size);
    EXPECT_EQ(result.status, GetParam().status) << result.err.substr(0, kMostSaid);
    const std::string said = *GetParam().said == '\0' ? "" : std::string("hostile:") + GetParam().said;
    EXPECT_EQ(result.err.substr(0, said.size()), said);
    EXPECT_LT(result.err.substr(0, result.err.find('\n')).size(), kMostSaid) << "a message is for people";
#if !VEXA_IS_SANITIZED
    EXPECT_LE(result.peakKiB, GetParam().memoryFactor * static_cast<long>(size / 1024) + GetParam().moreKiB);
#endif
    std::printf("%zu MB: %.3f s, %ld KiB", size >> 20, result.seconds, result.peakKiB);
    if (load::isLong()) {
        const double quarter = resultOf(GetParam(), size / 4).seconds;
        std::printf(", a quarter of it %.3f s", quarter);
        EXPECT_LE(result.seconds, 8 * quarter + 0.5) << "four times the file may take four times the time";
    }
    std::printf("\n");
}

const Hostile kFiles[] = {
    {"MacroOfOneWord", Kind_e::Macro, [](std::size_t n) { return filled(n, 'x'); }, 2, "1: no add-on 'xxx", 16},
    {"MacroOfOneCommand", Kind_e::Macro, [](std::size_t n) { return "ONE ECHO " + filled(n, '\xff'); }, 0, "", 16},
    {"MacroOfCommands", Kind_e::Macro, [](std::size_t n) { return repeated(n, "ONE SLEEP 0\n"); }, 0, "", 16},
    {"MacroOfBadLines", Kind_e::Macro, [](std::size_t n) { return repeated(n, "NO add-on of this name\n"); }, 2,
     "1: no add-on 'NO' is loaded (loaded: ONE)\n", 16},
    {"MacroOfNuls", Kind_e::Macro, [](std::size_t n) { return filled(n, '\0'); }, 2, "1: the line contains a NUL byte",
     8},
    {"MacroOfCarriageReturns", Kind_e::Macro, [](std::size_t n) { return filled(n, '\r'); }, 2,
     "1: the line contains a carriage return", 8},
    {"MacroOfLineFeeds", Kind_e::Macro, [](std::size_t n) { return filled(n, '\n'); }, 0, "", 16},
    {"MacroOfBlanks", Kind_e::Macro, [](std::size_t n) { return filled(n, ' '); }, 0, "", 8},
    {"StyleOfOneText", Kind_e::Style, [](std::size_t n) { return R"({"NAME":")" + filled(n, 'x') + "\"}"; }, 0, "", 16},
    {"StyleWithoutEnd", Kind_e::Style, [](std::size_t n) { return R"({"NAME":")" + filled(n, 'x'); }, 2,
     "1:9: syntax error while parsing value - invalid string: missing closing quote", 24},
    {"StyleThatIsNoUtf8", Kind_e::Style, [](std::size_t n) { return R"({"NAME":")" + filled(n, 'x') + "\xff\"}"; }, 2,
     "1:9: syntax error while parsing value - invalid string: ill-formed UTF-8 byte", 24},
    {"StyleOfDeepArrays", Kind_e::Style, [](std::size_t n) { return R"({"NAME":)" + filled(n, '['); }, 2,
     "1:24: nested too deeply", 8},
    {"StyleOfDeepObjects", Kind_e::Style, [](std::size_t n) { return repeated(n, R"({"A":)"); }, 2,
     "1:81: nested too deeply", 8},
    {"StyleOfNuls", Kind_e::Style, [](std::size_t n) { return filled(n, '\0'); }, 2, "1:1: syntax error", 8},
    {"StyleOfQuotes", Kind_e::Style, [](std::size_t n) { return filled(n, '"'); }, 2, "1:3: syntax error", 8},
    {"StyleOfLongInteger", Kind_e::Style, [](std::size_t n) { return R"({"NAME":)" + filled(n, '1') + '}'; }, 2,
     "1:9: number overflow parsing '111", 24},
    {"StyleOfLongFraction", Kind_e::Style, [](std::size_t n) { return R"({"NAME":0.)" + filled(n, '3') + '}'; }, 0, "",
     24},
    {"StyleOfKeywords", Kind_e::Style,
     [](std::size_t n) {
         return R"({"NAME":"")" + counted(n, [](std::size_t i) { return ",\"K" + std::to_string(i) + "\":1"; }) + '}';
     },
     0, "", 64},
    {"StyleOfOffsets", Kind_e::Style,
     [](std::size_t n) {
         const auto entry = [](std::size_t i) {
             return R"(,{"offset1":)" + std::to_string(i + 1) + R"(,"value":"a"})";
         };
         return R"({"NAME":{"$offsets":[{"value":"b"})" + counted(n, entry) + "]}}";
     },
     0, "", 48},
    {"StyleOfDescendingIndices", Kind_e::Style,
     [](std::size_t n) {
         const auto index = [](std::size_t i) { return std::to_string(200000000 - 2 * i) + ','; };
         return R"({"NAME":"","ActiveFieldMaps":[)" + counted(n, index) + "0]}";
     },
     0, "", 32},
    {"StyleOfOneIndexAgainAndAgain", Kind_e::Style,
     [](std::size_t n) { return R"({"NAME":"","ActiveFieldMaps":[)" + repeated(n, "1,") + "1]}"; }, 0, "", 80},
    {"StyleOfTooManySteps", Kind_e::Style,
     [](std::size_t n) { return R"({"NAME":"","ActiveFieldMaps":[)" + repeated(n, "\"0-20000000:2\",") + "1]}"; }, 2,
     "1:46: Expected at most 16777216 members in stepped ranges", 32, 700L << 10},
};

INSTANTIATE_TEST_SUITE_P(Every, HostileFile, testing::ValuesIn(kFiles), load::NameOf());

}  // namespace
}  // namespace vexa::e2e
