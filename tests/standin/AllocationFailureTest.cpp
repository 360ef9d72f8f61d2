// Tests that the host's C functions refuse a call if memory runs out, and throw no exception.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <limits>
#include <memory>
#include <string>

#include "support/FailingAllocator.h"
#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"

namespace vexa::standin {
namespace {

using tests::Failing;
using tests::FailingAllocator;

// Calls `function` with its first allocation failing, then with its second, and so on until none fails. Returns how
// often it answered 0 or null because an allocation failed.
template <class Function>
int refusals(Function function) {
    int refused = 0;
    bool answered = false;
    tests::sweepAllocations(Failing::Once, [&](long allowed, Failing failing) {
        const FailingAllocator allocator(allowed, failing);
        answered = function();
        if (FailingAllocator::hasFailed() && !answered) ++refused;
        return FailingAllocator::hasFailed();
    });
    EXPECT_TRUE(answered);
    return refused;
}

TEST(WithoutMemory, NothingIsAllocated) {
    const Host host;
    EXPECT_GT(refusals([] { return VexaUtilThreadMutexAlloc() != nullptr; }), 0);
    EXPECT_GT(refusals([] { return VexaUtilArgListAlloc() != nullptr; }), 0);
    EXPECT_GT(refusals([] { return VexaUtilSetAlloc() != nullptr; }), 0);
    EXPECT_GT(refusals([] { return VexaUtilStringAlloc(5, "text") != nullptr; }), 0);
}

TEST(WithoutMemory, NoStringIsAllocatedThatIsLongerThanWhatIsLeft) {
    if (VEXA_IS_SANITIZED) GTEST_SKIP() << "a sanitizer needs more addresses than the limit";
    if (VEXA_IS_EMULATED) GTEST_SKIP() << "an emulator sets no limit";
    const Host host;
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_AS, &before), 0);
    const rlimit little{rlim_t{1} << 30, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_AS, &little), 0);
    const char* const string = VexaUtilStringAlloc(std::numeric_limits<int>::max(), "text");
    ASSERT_EQ(setrlimit(RLIMIT_AS, &before), 0);
    EXPECT_EQ(string, nullptr);
}

TEST(WithoutMemory, AHostEndsThoughItCannotReportWhatItsAddOnLeaves) {
    auto host = std::make_unique<Host>();
    host->loadAddOn(VEXA_TEST_ADDONS "/probe.so");
    {
        const FailingAllocator allocator(0, Failing::EverAfter);
        host.reset();
    }
    EXPECT_TRUE(FailingAllocator::hasFailed());
    EXPECT_EQ(Host::current(), nullptr);
}

TEST(WithoutMemory, NothingIsAppended) {
    Host host;
    host.setKeepsCalls(false);  // the log would take the failures
    ArgList_s* const argList = VexaUtilArgListAlloc();
    const std::string longText(100, 'x');
    EXPECT_GT(refusals([&] { return VexaUtilArgListAppendString(argList, "P1", longText.c_str()) == 1; }), 0);
    Set_s* const set = VexaUtilSetAlloc();
    EXPECT_GT(refusals([&] { return VexaUtilSetInsert(set, 1, 2) == 1; }), 0);
}

TEST(WithoutMemory, NothingIsRecorded) {
    Host host;
    host.setRecording(true);
    const std::string longText(100, 'x');
    const int refused = refusals([&] { return VexaUtilMacroRecordExtCommand("PROBE", longText.c_str()) == 1; });
    EXPECT_GT(refused, 0);
    for (const RecordedCommand& recorded : host.recordedCommands()) EXPECT_EQ(recorded.command, longText);
}

TEST(WithoutMemory, CallsSucceedUnseen) {
    const Host host;
    EXPECT_EQ(refusals([] { return VexaUtilStatusCheckPercentDone(5) == 1; }), 0);
    EXPECT_EQ(host.calls().back().result, "1");
}

TEST(WithoutMemory, NoTaskIsToldToStop) {
    Host host;
    host.setKeepsCalls(false);
    const std::string longText(100, 'x');
    VexaUtilStatusStartPercentDone(longText.c_str(), 1, 1);
    int percent = 0;
    EXPECT_EQ(refusals([&] { return VexaUtilStatusCheckPercentDone(++percent) == 1; }), 0);
}

}  // namespace
}  // namespace vexa::standin
