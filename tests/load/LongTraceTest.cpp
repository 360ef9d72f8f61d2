// Tests that the report of a long run needs little memory and has a small page. With the full load, the run has ten
// million calls.

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "e2e/RunProgram.h"
#include "load/LargeTexts.h"
#include "support/TemporaryFolder.h"

namespace vexa::e2e {
namespace {

constexpr long kCallsOfACommand = 1000;
constexpr long kCallNanoseconds = 700;

std::string eventOf(const std::string& name, const char* category, const char* phase, long nanoseconds,
                    const std::string& facts) {
    std::string fraction = std::to_string(1000 + nanoseconds % 1000);
    fraction.front() = '.';
    return ",\n{\"name\":\"" + name + "\",\"cat\":\"" + category + "\",\"ph\":\"" + phase +
           "\",\"pid\":1,\"tid\":1,\"ts\":" + std::to_string(nanoseconds / 1000) + fraction + ",\"args\":{" + facts +
           "}}";
}

// Writes the trace of a run in which every command and every call has a text of its own.
void writeTrace(const std::string& path, long calls) {
    std::ofstream out(path);
    out << R"([
{"name":"run","cat":"run","ph":"i","pid":1,"tid":1,"ts":0.000,"s":"p","args":{"tool":"t","macroFile":"m.macro",)"
        << R"("options":{},"isStrict":false,"hasTimeLimit":false,"suppressed":[]}})";
    long time = 0;
    for (long call = 1; call <= calls; ++call, time += kCallNanoseconds) {
        const std::string command = "SAY " + std::to_string(call / kCallsOfACommand);
        if (call % kCallsOfACommand == 1) {
            out << eventOf("ONE " + command, "command", "B", time,
                           R"("addOn":"ONE","command":")" + command + R"(","macroLine":"m.macro:1")");
        }
        out << eventOf(
            "VexaUtilDialogErrMsg", "call", "B", time,
            "\"number\":" + std::to_string(call) + R"(,"arguments":"\"text )" + std::to_string(call) + R"(\"")");
        out << eventOf("VexaUtilDialogErrMsg", "call", "E", time + kCallNanoseconds / 2, R"("result":"")");
        if (call % kCallsOfACommand == 0) {
            out << eventOf("ONE " + command, "command", "E", time + kCallNanoseconds,
                           R"("addOn":"ONE","succeeded":true,"error":"")");
        }
    }
    out << eventOf("outcome", "run", "i", time, R"("exitStatus":0,"outcome":"all went well")") << "\n]\n";
}

TEST(LongTrace, HasASmallReportThatNeedsLittleMemory) {
    const tests::TemporaryFolder folder;
    const long calls = load::amount(500000 / load::kReduction, 10000000);
    writeTrace(folder.path("t.json"), calls);
    Program program;
    program.folder = folder.path();
    program.arguments = {VEXA_STANDIN, "report", "t.json", "-o", "r.html"};
    const ProgramResult result = runProgram(program);
    EXPECT_EQ(result.status, 0) << result.err;
    constexpr std::uintmax_t kMostPageBytes = 5000000;
    EXPECT_LE(std::filesystem::file_size(folder.path("r.html")), kMostPageBytes);
#if !VEXA_IS_SANITIZED
    constexpr long kMostKiB = 200L * 1000 * 1000 / 1024;
    EXPECT_LE(result.peakKiB, kMostKiB);
#endif
    std::ifstream page(folder.path("r.html"));
    const std::string text(std::istreambuf_iterator<char>(page), {});
    EXPECT_NE(text.find("\"calls\":" + std::to_string(calls)), std::string::npos) << "the sums are of the whole run";
    std::printf("%ld calls: %.3f s, %ld KiB\n", calls, result.seconds, result.peakKiB);
}

}  // namespace
}  // namespace vexa::e2e
