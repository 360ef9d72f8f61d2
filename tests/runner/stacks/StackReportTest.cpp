#include "stacks/StackReport.h"

#include <gtest/gtest.h>

namespace vexa::runner {
namespace {

const Frame kSystem = {"raise", "", 0, "/lib/libc.so.6", 0x10};
const Frame kOwn = {"stats::mean()", "/no/Stats.cpp", 42, "/x/stats.so", 0x20};
const Frame kOwnWithoutLine = {"stats::mean()", "", 0, "/x/stats.so", 0x20};
const Frame kHost = {"main", "/no/host.c", 5, "/x/host", 0x30};

ThreadStack stackWith(const Frame& own) {
    ThreadStack stack;
    stack.thread = 12;
    stack.isFirst = true;
    stack.frames = {kSystem, own, kHost};
    stack.ownBegin = 1;
    stack.ownEnd = 2;
    return stack;
}

ThreadStack stackOfHost() {
    ThreadStack stack;
    stack.thread = 13;
    stack.frames = {kSystem, kHost};
    return stack;
}

StackReport reportOf(std::vector<ThreadStack> threads) {
    StackReport report;
    report.threads = std::move(threads);
    return report;
}

siginfo_t signalOf(int number, int code, std::uintptr_t address) {
    siginfo_t signal{};
    signal.si_signo = number;
    signal.si_code = code;
    signal.si_addr = reinterpret_cast<void*>(address);
    return signal;
}

TEST(StackReport, StartsWithTheLineOfTheAddOnAndEndsThere) {
    EXPECT_EQ(textOf(reportOf({stackWith(kOwn)})),
              "    at:    /no/Stats.cpp:42, in stats::mean\n"
              "    stack:\n"
              "           #0  raise+0x10 in libc.so.6\n"
              "           #1  /no/Stats.cpp:42, in stats::mean\n"
              "           and 1 more\n");
}

TEST(StackReport, SaysHowToGetLines) {
    const std::string text = textOf(reportOf({stackWith(kOwnWithoutLine)}));
    EXPECT_EQ(text.rfind("    at:    stats::mean+0x20 in stats.so\n", 0), 0U) << text;
    EXPECT_NE(text.find("    hint:  Compile the add-on with -g to see the lines of its source.\n"), std::string::npos);
    EXPECT_EQ(textOf(reportOf({stackOfHost()})).find("hint"), std::string::npos);
}

TEST(StackReport, ShowsAllFramesIfTheyAreNotOfAnAddOn) {
    EXPECT_EQ(textOf(reportOf({stackOfHost()})),
              "    stack of thread 13:\n"
              "           #0  raise+0x10 in libc.so.6\n"
              "           #1  /no/host.c:5, in main\n");
}

TEST(StackReport, CountsThreadsWithoutCodeOfAnAddOn) {
    StackReport report = reportOf({stackWith(kOwn), stackOfHost()});
    EXPECT_NE(textOf(report).find("    1 more thread runs no code of an add-on\n"), std::string::npos);
    report.threads.push_back(stackOfHost());
    EXPECT_NE(textOf(report).find("    2 more threads run no code of an add-on\n"), std::string::npos);
    report.isWhole = true;
    EXPECT_EQ(textOf(report).find("no code of an add-on"), std::string::npos);
    EXPECT_NE(textOf(report).find("           #2  /no/host.c:5, in main\n"), std::string::npos);
}

TEST(StackReport, ShowsSixteenFrames) {
    ThreadStack deep = stackWith(kOwn);
    deep.frames.insert(deep.frames.begin() + 1, 20, kOwn);
    deep.ownEnd += 20;
    deep.leftOut = 100;
    EXPECT_NE(textOf(reportOf({deep})).find("#15 /no/Stats.cpp:42, in stats::mean\n           and 107 more\n"),
              std::string::npos);
    deep.isCounted = false;
    EXPECT_NE(textOf(reportOf({deep})).find("           and more than 107 more\n"), std::string::npos);
}

TEST(StackReport, SaysWhyThereIsNoStack) {
    StackReport report;
    EXPECT_TRUE(report.isEmpty());
    EXPECT_EQ(textOf(report), "");
    report.fault = "address 0x10";
    report.problem = "nobody may look";
    EXPECT_FALSE(report.isEmpty());
    EXPECT_EQ(textOf(report), "    fault: address 0x10\n    stack: unknown: nobody may look\n");
}

TEST(StackReport, SurvivesPacking) {
    StackReport report = reportOf({stackWith(kOwn), stackOfHost()});
    report.signal = SIGSEGV;
    report.fault = "address 0x10";
    report.problem = "some";
    report.isWhole = true;
    const StackReport read = unpackedReport(packed(report));
    EXPECT_EQ(read.signal, SIGSEGV);
    EXPECT_TRUE(read.isWhole);
    EXPECT_EQ(textOf(read), textOf(report));
    EXPECT_EQ(read.ownFrame()->line, 42U);
    EXPECT_TRUE(unpackedReport("").isEmpty());
}

TEST(StackReport, DescribesTheFault) {
    const struct {
        const char* why;
        siginfo_t signal;
        const char* text;
    } cases[] = {
        {"unmapped", signalOf(SIGSEGV, SEGV_MAPERR, 0x10), "address 0x10: nothing is mapped there"},
        {"null", signalOf(SIGSEGV, SEGV_MAPERR, 0), "address 0: nothing is mapped there"},
        {"protected", signalOf(SIGSEGV, SEGV_ACCERR, 0x2000),
         "address 0x2000: the memory there does not permit the access"},
        {"past the end of a file", signalOf(SIGBUS, BUS_ADRERR, 16), "address 0x10: the mapped file has no such byte"},
        {"division", signalOf(SIGFPE, FPE_INTDIV, 16), "address 0x10: an integer was divided by zero"},
        {"another cause", signalOf(SIGFPE, FPE_FLTINV, 16), "address 0x10"},
        {"sent by a process", signalOf(SIGSEGV, SI_USER, 16), ""},
        {"no address known", signalOf(SIGSEGV, SI_KERNEL, 0), ""},
        {"no fault", signalOf(SIGABRT, SI_TKILL, 16), ""},
    };
    for (const auto& [why, signal, text] : cases) EXPECT_EQ(faultText(signal), text) << why;
}

}  // namespace
}  // namespace vexa::runner
