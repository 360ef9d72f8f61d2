#include "vexautilutil/HostGuards.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "support/VirtualSlots.h"
#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"

namespace vexa::vexautilutil {
namespace {

using Calls = std::vector<std::string>;

// Returns the function and the arguments of each host call so far.
Calls callsOf(const standin::Host& host) {
    Calls calls;
    for (const standin::Call& call : host.calls()) calls.push_back(call.function + "(" + call.arguments + ")");
    return calls;
}

template <class Guard>
void makeThrowingScope(const Guard& makeGuard) {
    try {
        const auto guard = makeGuard();
        static_cast<void>(guard);
        throw std::runtime_error("leave the scope");
    } catch (const std::runtime_error&) {}
}

template <class Guard>
class EveryGuard : public testing::Test {};

struct Lock : AddOnIdLock {
    Lock() : AddOnIdLock(nullptr) {}
};
using Guards = testing::Types<Lock, AuxDataSuspendBroadcast, DataSetSuspendMarking, SolutionTimeNotificationDeferrer>;
TYPED_TEST_SUITE(EveryGuard, Guards, );  // the macro needs its last argument, even an empty one

TYPED_TEST(EveryGuard, CallsTheHostOnceAtEachEnd) {
    const standin::Host host;
    {
        const TypeParam guard;
        EXPECT_EQ(host.calls().size(), 1u);
    }
    EXPECT_EQ(host.calls().size(), 2u);
}

TYPED_TEST(EveryGuard, EndsOnceWhenTheScopeIsLeftByAnException) {
    const standin::Host host;
    makeThrowingScope([] { return TypeParam(); });
    EXPECT_EQ(host.calls().size(), 2u);
}

TYPED_TEST(EveryGuard, DoesNotExistWhenItsBeginThrows) {
    standin::Host host;
    for (const char* begin : {"VexaUtilLockStart", "VexaUtilAuxDataBeginAssign", "VexaUtilDataSetSuspendMarking",
                              "VexaUtilZoneSolutionTimeModificationBegin"}) {
        host.throwFromCall(begin);
    }
    EXPECT_THROW(TypeParam guard, std::runtime_error);
    EXPECT_EQ(host.calls().size(), 1u) << "no end call";
}

TYPED_TEST(EveryGuard, IsNeitherCopiedNorMoved) {
    static_assert(!std::is_copy_constructible_v<TypeParam>);
    static_assert(!std::is_move_constructible_v<TypeParam>);
    static_assert(!std::is_copy_assignable_v<TypeParam>);
    static_assert(!std::is_move_assignable_v<TypeParam>);
    static_assert(std::is_nothrow_destructible_v<TypeParam>);
    static_assert(!std::is_polymorphic_v<TypeParam>);
    SUCCEED();
}

TYPED_TEST(EveryGuard, EndsTheProgramWhenItsEndThrows) {
    EXPECT_DEATH(
        {
            standin::Host host;
            const TypeParam guard;
            for (const char* end : {"VexaUtilLockFinish", "VexaUtilAuxDataEndAssign", "VexaUtilDataSetSuspendMarking",
                                    "VexaUtilZoneSolutionTimeModificationEnd"}) {
                host.throwFromCall(end);
            }
        },
        "");
}

TEST(AddOnIdLock, HandsTheIdentityToBothCallsUnchanged) {
    const standin::Host host;
    int anything = 0;
    auto* const identity = reinterpret_cast<AddOnList_s*>(&anything);
    { const AddOnIdLock lock(identity); }
    EXPECT_EQ(callsOf(host), (Calls{"VexaUtilLockStart(unknown)", "VexaUtilLockFinish(unknown)"}));
}

TEST(AddOnIdLock, HandsNullToBothCalls) {
    const standin::Host host;
    { const AddOnIdLock lock(nullptr); }
    EXPECT_EQ(callsOf(host), (Calls{"VexaUtilLockStart(null)", "VexaUtilLockFinish(null)"}));
}

TEST(AddOnIdLock, HoldsTheIdentityAndNothingElse) {
    int anything = 0;
    auto* const identity = reinterpret_cast<AddOnList_s*>(&anything);
    const AddOnIdLock lock(identity);
    EXPECT_EQ(sizeof lock, sizeof identity);
    EXPECT_EQ(tests::fieldAt<AddOnList_s*>(lock, 0), identity);
}

TEST(AuxDataSuspendBroadcast, BeginsAndEndsAnAssignment) {
    const standin::Host host;
    { const AuxDataSuspendBroadcast guard; }
    EXPECT_EQ(callsOf(host), (Calls{"VexaUtilAuxDataBeginAssign()", "VexaUtilAuxDataEndAssign()"}));
}

TEST(DataSetSuspendMarking, SuspendsAndResumes) {
    const standin::Host host;
    { const DataSetSuspendMarking guard; }
    EXPECT_EQ(callsOf(host), (Calls{"VexaUtilDataSetSuspendMarking(1)", "VexaUtilDataSetSuspendMarking(0)"}));
}

TEST(DataSetSuspendMarking, LeavesNestingToTheHost) {
    const standin::Host host;
    {
        const DataSetSuspendMarking outer;
        const DataSetSuspendMarking inner;
    }
    EXPECT_EQ(callsOf(host), (Calls{"VexaUtilDataSetSuspendMarking(1)", "VexaUtilDataSetSuspendMarking(1)",
                                    "VexaUtilDataSetSuspendMarking(0)", "VexaUtilDataSetSuspendMarking(0)"}));
}

TEST(SolutionTimeNotificationDeferrer, BeginsAndEndsAModification) {
    const standin::Host host;
    { const SolutionTimeNotificationDeferrer guard; }
    EXPECT_EQ(callsOf(host),
              (Calls{"VexaUtilZoneSolutionTimeModificationBegin()", "VexaUtilZoneSolutionTimeModificationEnd()"}));
}

TEST(HostGuards, EndInReverseOrder) {
    const standin::Host host;
    {
        const AddOnIdLock lock(nullptr);
        const AuxDataSuspendBroadcast broadcast;
    }
    EXPECT_EQ(host.calledFunctions(), (Calls{"VexaUtilLockStart", "VexaUtilAuxDataBeginAssign",
                                             "VexaUtilAuxDataEndAssign", "VexaUtilLockFinish"}));
}

TEST(HostGuards, HaveNoFieldsButTheLocksIdentity) {
    static_assert(std::is_empty_v<AuxDataSuspendBroadcast>);
    static_assert(std::is_empty_v<DataSetSuspendMarking>);
    static_assert(std::is_empty_v<SolutionTimeNotificationDeferrer>);
    SUCCEED();
}

}  // namespace
}  // namespace vexa::vexautilutil
