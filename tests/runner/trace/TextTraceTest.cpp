#include "trace/TextTrace.h"

#include <gtest/gtest.h>

#include <thread>

#include "TracedHost.h"
#include "vexa/VexaUtil.h"

namespace vexa::runner {
namespace {

class TextTraceTest : public ::testing::Test {
protected:
    standin::Host& host() { return m_traced.host(); }

    // What stands between the head and the outcome.
    std::string finished() {
        const std::string text = m_traced.finished();
        const std::size_t begin = text.find('\n') + 1;
        return text.substr(begin, text.rfind("=>") - begin);
    }

    TracedHost<TextTrace> m_traced;
};

TEST_F(TextTraceTest, HasALineACallWithinTheLinesOfItsCommand) {
    host().loadAddOn(MISBEHAVING_ADDON);
    host().run("MISBEHAVING", "unbalanced-lock-twin", "m.macro:3");
    EXPECT_EQ(finished(),
              "1  load misbehaving.so\n"
              "1    => loaded MISBEHAVING\n"
              "1  m.macro:3: MISBEHAVING unbalanced-lock-twin\n"
              "1    VexaUtilLockStart(MISBEHAVING)\n"
              "1    VexaUtilAuxDataBeginAssign()\n"
              "1    VexaUtilLockStart(MISBEHAVING)\n"
              "1    VexaUtilLockFinish(MISBEHAVING)\n"
              "1    VexaUtilLockFinish(MISBEHAVING)\n"
              "1    VexaUtilAuxDataEndAssign()\n"
              "1    => accepted\n"
              "1  unload MISBEHAVING\n"
              "1    => unloaded\n");
}

TEST_F(TextTraceTest, EndsWithTheOutcome) {
    const std::string text = m_traced.finished();
    EXPECT_EQ(text.substr(text.find("=>")), "=> exit status 0: all went well\n");
}

TEST_F(TextTraceTest, HasResults) {
    VexaUtilStringAlloc(4, "a \"text\"");
    EXPECT_EQ(finished(), "1  VexaUtilStringAlloc(4, \"a \\\"text\\\"\") = string#1\n");
}

TEST_F(TextTraceTest, HasAFindingBehindItsCall) {
    VexaUtilAuxDataEndAssign();
    VexaUtilMacroIsBatchModeActive();
    EXPECT_EQ(finished(),
              "1  VexaUtilAuxDataEndAssign()\n"
              "1    ! error: VexaUtilAuxDataEndAssign has no matching VexaUtilAuxDataBeginAssign "
              "[unbalanced-auxdata]\n"
              "1  VexaUtilMacroIsBatchModeActive() = 0\n");
}

TEST_F(TextTraceTest, HasAFindingAboutTheEndOfACommandWithWhereItBegan) {
    host().loadAddOn(MISBEHAVING_ADDON);
    host().run("MISBEHAVING", "unbalanced-lock", "m.macro:3");
    EXPECT_NE(finished().find("1    VexaUtilLockStart(MISBEHAVING)\n"
                              "1    ! error: VexaUtilLockStart has no matching VexaUtilLockFinish in the command "
                              "[unbalanced-lock] (first: VexaUtilLockStart, m.macro:3)\n"
                              "1    => accepted\n"),
              std::string::npos);
}

TEST_F(TextTraceTest, TellsOfACommandThatFailed) {
    host().loadAddOn(MISBEHAVING_ADDON);
    host().run("MISBEHAVING", "missing-errmsg");
    EXPECT_NE(finished().find("1    => failed\n"), std::string::npos);
}

TEST_F(TextTraceTest, NumbersThreads) {
    VexaUtilThreadMutexLock(nullptr);
    std::thread([] { VexaUtilThreadMutexUnlock(nullptr); }).join();
    const std::string text = finished();
    EXPECT_NE(text.find("1  VexaUtilThreadMutexLock(null)\n"), std::string::npos);
    EXPECT_NE(text.find("2  VexaUtilThreadMutexUnlock(null)\n"), std::string::npos);
}

TEST_F(TextTraceTest, HasALineForATextWithControlCharacters) {
    VexaUtilDialogErrMsg("a\x01\n\x7f\x1f");
    EXPECT_EQ(finished(), "1  VexaUtilDialogErrMsg(\"a\\x01\\n\\x7F\\x1F\")\n");
}

TEST_F(TextTraceTest, TellsOfACallThatThrew) {
    host().throwFromCall("VexaUtilMacroIsBatchModeActive");
    EXPECT_THROW(VexaUtilMacroIsBatchModeActive(), std::runtime_error);
    EXPECT_EQ(finished(), "1  VexaUtilMacroIsBatchModeActive() threw\n");
}

TEST_F(TextTraceTest, IsThereUpToTheLastCallBeforeItIsFinished) {
    VexaUtilMacroIsBatchModeActive();
    EXPECT_NE(m_traced.text().find("VexaUtilMacroIsBatchModeActive() = 0\n"), std::string::npos);
}

}  // namespace
}  // namespace vexa::runner
