#include "vexa/ExceptionBase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>
#include <type_traits>

#include "FakedBacktrace.h"
#include "support/FailingAllocator.h"
#include "support/VirtualSlots.h"
#include "vexa/InvalidArgumentException.h"

namespace vexa {
namespace {

std::string printed(const ExceptionBase& exception) {
    char* text = nullptr;
    std::size_t size = 0;
    FILE* const stream = open_memstream(&text, &size);
    exception.printStackTrace(stream);
    EXPECT_EQ(std::fclose(stream), 0) << "the stream was closed, or failed";
    const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
    return {text, size};
}

// Returns an exception constructed in the handler of `cause`.
template <class Cause>
ExceptionBase causedBy(const Cause& cause, const std::string& message) {
    try {
        throw cause;
    } catch (...) {
        return ExceptionBase(message, false);
    }
}

TEST(ExceptionBase, KeepsACopyOfTheMessage) {
    std::string text = "Expected a number";
    const ExceptionBase exception(text, false);
    text = "changed";
    EXPECT_EQ(exception.message(), "Expected a number");
    EXPECT_STREQ(exception.what(), "Expected a number");
}

TEST(ExceptionBase, WhatEndsAtANulCharacterAndTheMessageDoesNot) {
    const std::string text("a\0b", 3);
    const ExceptionBase exception(text, false);
    EXPECT_EQ(exception.message(), text);
    EXPECT_STREQ(exception.what(), "a");
}

TEST(ExceptionBase, CanBeCaughtAsAStandardException) {
    EXPECT_TRUE((std::is_convertible_v<ExceptionBase*, std::exception*>));
    try {
        throw ExceptionBase("message", false);
    } catch (const std::exception& exception) {
        EXPECT_STREQ(exception.what(), "message");
    }
}

TEST(ExceptionBase, HasNoCauseOutsideOfAHandler) { EXPECT_EQ(ExceptionBase("message", false).cause(), nullptr); }

TEST(ExceptionBase, TakesTheExceptionBeingHandledForItsCause) {
    const ExceptionBase exception = causedBy(std::runtime_error("the cause"), "message");
    ASSERT_NE(exception.cause(), nullptr);
    EXPECT_THROW(std::rethrow_exception(exception.cause()), std::runtime_error);
}

TEST(ExceptionBase, CopiesKeepMessageAndCause) {
    const ExceptionBase exception = causedBy(std::runtime_error("the cause"), "message");
    const ExceptionBase copy(exception);
    ExceptionBase assigned("other", false);
    assigned = exception;
    for (const ExceptionBase* same : {&copy, static_cast<const ExceptionBase*>(&assigned)}) {
        EXPECT_EQ(same->message(), "message");
        EXPECT_EQ(same->cause(), exception.cause());
    }
}

TEST(ExceptionBasePrint, PrintsTheMessage) { EXPECT_EQ(printed(ExceptionBase("message", false)), "message\n"); }

TEST(ExceptionBasePrint, PrintsTheChainOfCauses) {
    const ExceptionBase inner = causedBy(std::runtime_error("disk is full"), "cannot write");
    EXPECT_EQ(printed(causedBy(inner, "cannot save")),
              "cannot save\nCaused by: cannot write\nCaused by: disk is full\n");
}

TEST(ExceptionBasePrint, PrintsALongChainOfCausesWhole) {
    ExceptionBase exception("0", false);
    std::string causes;
    for (int i = 1; i <= 20; ++i) {
        causes = "Caused by: " + exception.message() + "\n" + causes;
        exception = causedBy(ExceptionBase(exception), std::to_string(i));
    }
    EXPECT_EQ(printed(exception), "20\n" + causes);
}

TEST(ExceptionBasePrint, PrintsACauseOfADerivedClass) {
    EXPECT_EQ(printed(causedBy(InvalidArgumentException("bad set"), "refused")), "refused\nCaused by: bad set\n");
}

TEST(ExceptionBasePrint, PrintsACauseOfAnyOtherType) {
    EXPECT_EQ(printed(causedBy(5, "message")), "message\nCaused by: an exception of unknown type\n");
}

TEST(ExceptionBasePrint, EndsForAnExceptionThatIsItsOwnCause) {
    const ExceptionBase withoutCause("third", false);
    std::string text;
    try {
        throw ExceptionBase("first", false);
    } catch (ExceptionBase& exception) {
        exception = ExceptionBase("second", false);
        text = printed(exception);
        exception = withoutCause;  // ends the circle of causes, which would be a leak
    }
    EXPECT_EQ(text.substr(0, 25), "second\nCaused by: second\n");
    EXPECT_EQ(text.substr(text.size() - 21), "\n... and more causes\n");
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1 + 64 + 1) << "the message, the causes and this line";
}

TEST(ExceptionBasePrint, PrintsFramesOnlyWhenAskedToCaptureThem) {
    EXPECT_EQ(printed(ExceptionBase("message", false)).find("    at "), std::string::npos);
    const std::string text = printed(ExceptionBase("message", true));
    const std::string program = program_invocation_name;
    EXPECT_EQ(text.rfind("message\n    at " + program + '(', 0), 0) << text;
    EXPECT_GT(std::count(text.begin(), text.end(), '\n'), 6) << "the stack of a test is deeper: " << text;
    EXPECT_EQ(text.find("libvexahostlibs"), std::string::npos) << "the caller's stack is wanted, not our own: " << text;
}

TEST(ExceptionBasePrint, PrintsAddressesWithoutMemoryForNames) {
    const ExceptionBase exception("message", true);
    const std::string named = printed(exception);
    const tests::FakedBacktrace faked(tests::Backtrace::WithoutNames);
    const std::string text = printed(exception);
    EXPECT_EQ(text.substr(0, 17), "message\n    at 0x");
    EXPECT_EQ(text.find("hostlibs_tests"), std::string::npos) << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), std::count(named.begin(), named.end(), '\n'));
    EXPECT_EQ(text.find_first_not_of("\n at0123456789abcdefx", std::strlen("message")), std::string::npos) << text;
}

TEST(ExceptionBasePrint, PrintsTheWholeStackWhenItsCallerIsNotInIt) {
    const tests::FakedBacktrace faked(tests::Backtrace::OfAnother);
    const std::string text = printed(ExceptionBase("message", true));
    EXPECT_EQ(text.substr(0, 15), "message\n    at ");
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2) << text;
}

TEST(ExceptionBasePrint, PrintsFramesBeforeCauses) {
    std::string text;
    try {
        throw std::runtime_error("the cause");
    } catch (...) {
        text = printed(ExceptionBase("message", true));
    }
    EXPECT_LT(text.find("    at "), text.find("Caused by: the cause"));
}

TEST(ExceptionBasePrint, CopiesKeepTheFrames) {
    const ExceptionBase exception("message", true);
    EXPECT_EQ(printed(ExceptionBase(exception)), printed(exception));
}

TEST(ExceptionBasePrint, PrintsToStandardErrorWhenNotToldWhereTo) {
    testing::internal::CaptureStderr();
    ExceptionBase("message", false).printStackTrace();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "message\n");
}

TEST(ExceptionBasePrint, PrintsToStandardErrorThroughTheOverrideOfADerivedClass) {
    class Quiet : public ExceptionBase {
    public:
        explicit Quiet(FILE*& stream) : ExceptionBase("message", false), m_stream(stream) {}
        using ExceptionBase::printStackTrace;
        void printStackTrace(FILE* stream) const override { m_stream = stream; }

    private:
        FILE*& m_stream;
    };
    FILE* stream = nullptr;
    const Quiet quiet(stream);
    static_cast<const ExceptionBase&>(quiet).printStackTrace();
    EXPECT_EQ(stream, stderr);
}

TEST(ExceptionBase, AllocatesNothingForAShortMessage) {
    const std::string message(15, 'x');
    bool thrown = false;
    {
        const tests::FailingAllocator allocator(0, tests::Failing::EverAfter);
        try {
            const ExceptionBase exception(message, false);
        } catch (const std::bad_alloc&) {
            thrown = true;
        }
    }
    EXPECT_FALSE(thrown);
}

TEST(ExceptionBase, ItsVirtualOperationsFollowTheDestructorInOrder) {
    using Print = void (ExceptionBase::*)() const;
    using PrintTo = void (ExceptionBase::*)(FILE*) const;
    EXPECT_TRUE(std::has_virtual_destructor_v<ExceptionBase>);
    EXPECT_EQ(tests::slotOf(&ExceptionBase::what), 2);
    EXPECT_EQ(tests::slotOf(&ExceptionBase::cause), 3);
    EXPECT_EQ(tests::slotOf(&ExceptionBase::message), 4);
    EXPECT_EQ(tests::slotOf(static_cast<Print>(&ExceptionBase::printStackTrace)), 5);
    EXPECT_EQ(tests::slotOf(static_cast<PrintTo>(&ExceptionBase::printStackTrace)), 6);
}

}  // namespace
}  // namespace vexa
