#include "contract/messages/EventMessage.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

namespace vexa::standin {
namespace {

using Time = std::chrono::steady_clock::time_point;

const Time kTime{std::chrono::nanoseconds(123456789)};

EventMessage sent(const EventMessage& message) {
    const auto read = readMessage(bytesOf(message));
    EXPECT_TRUE(read.has_value());
    return read.value_or(EventMessage());
}

TEST(EventMessage, KeepsAnEntry) {
    const EntryEvent entry{Entry_e::Unloading,          "STATS", "MEAN", "command 3", true, "why", 7, {}, kTime,
                           {3, "", "STATS MEAN", "", 7}};
    const EventMessage message = sent({Message_e::EntryEnded, 42, entry});
    const auto& read = std::get<EntryEvent>(message.content);
    EXPECT_EQ(message.kind, Message_e::EntryEnded);
    EXPECT_EQ(message.thread, 42);
    EXPECT_EQ(read.kind, Entry_e::Unloading);
    EXPECT_EQ(read.addOnId, "STATS");
    EXPECT_EQ(read.command, "MEAN");
    EXPECT_EQ(read.macroLine, "command 3");
    EXPECT_TRUE(read.succeeded);
    EXPECT_EQ(read.error, "why");
    EXPECT_EQ(read.threadNumber, 7U);
    EXPECT_EQ(read.time, kTime);
    EXPECT_EQ(read.failure.call, 3U);
    EXPECT_EQ(read.failure.command, "STATS MEAN");
}

TEST(EventMessage, KeepsTheStartOfAnEntry) {
    EntryEvent entry;
    entry.addOnId = "stats.so";
    const EventMessage message = sent({Message_e::EntryBegan, 42, entry});
    EXPECT_EQ(message.kind, Message_e::EntryBegan);
    EXPECT_EQ(std::get<EntryEvent>(message.content).addOnId, "stats.so");
}

TEST(EventMessage, KeepsACall) {
    const CallEvent call{9, "VexaUtilStringAlloc", "14, \"error\"", "string#1", true, 2, {}, kTime};
    const EventMessage message = sent({Message_e::CallEnded, 1, call});
    const auto& read = std::get<CallEvent>(message.content);
    EXPECT_EQ(read.number, 9U);
    EXPECT_STREQ(read.function, "VexaUtilStringAlloc");
    EXPECT_EQ(read.arguments, "14, \"error\"");
    EXPECT_EQ(read.result, "string#1");
    EXPECT_TRUE(read.threw);
    EXPECT_EQ(read.threadNumber, 2U);
    EXPECT_EQ(read.time, kTime);
}

TEST(EventMessage, KeepsAFinding) {
    Finding finding;
    finding.rule = "unbalanced-lock";
    finding.severity = Severity_e::Warning;
    finding.message = "two\nlines";
    finding.addOnId = "STATS";
    finding.opened = Place{3, "VexaUtilLockStart", "STATS MEAN", "command 1", 1};
    finding.seen = Place{0, "", "STATS MEAN", "command 1", 2};
    finding.count = 4;
    finding.repeats = 5;
    const EventMessage message = sent({Message_e::FindingMade, 1, finding});
    const auto& read = std::get<Finding>(message.content);
    EXPECT_EQ(read.severity, Severity_e::Warning);
    EXPECT_EQ(textOf(read), textOf(finding));
    EXPECT_EQ(read.count, 4U);
    finding.opened.reset();
    const EventMessage other = sent({Message_e::FindingMade, 1, finding});
    EXPECT_FALSE(std::get<Finding>(other.content).opened);
}

Finding findingWithStack(CodeStack stack) {
    Finding finding;
    finding.rule = "unbalanced-lock";
    finding.seen.stack = std::make_shared<const CodeStack>(std::move(stack));
    return finding;
}

TEST(EventMessage, KeepsTheStackOfAFinding) {
    const EventMessage message =
        sent({Message_e::FindingMade, 1, findingWithStack({{"stats.so", 16, "01ab", true}, {"host", 8, "", false}})});
    const auto& stack = std::get<Finding>(message.content).seen.stack;
    ASSERT_TRUE(stack);
    ASSERT_EQ(stack->size(), 2U);
    EXPECT_EQ(stack->front().object, "stats.so");
    EXPECT_EQ(stack->front().offset, 16U);
    EXPECT_EQ(stack->front().buildId, "01ab");
    EXPECT_TRUE(stack->front().isAddOn);
    EXPECT_EQ(stack->back().object, "host");
    EXPECT_FALSE(stack->back().isAddOn);
}

TEST(EventMessage, CutsALongStack) {
    const EventMessage message = sent({Message_e::FindingMade, 1, findingWithStack(CodeStack(49))});
    EXPECT_EQ(std::get<Finding>(message.content).seen.stack->size(), 48U);
}

// A process that writes over its messages must not make the reader allocate gigabytes.
TEST(EventMessage, IsRefusedIfItsStackIsLongerThanAny) {
    const auto bytesWithStack = [](std::uint32_t size) {
        return bytesOf({Message_e::FindingMade, 1, findingWithStack(CodeStack(size, {"stats.so", 0, "", false}))});
    };
    std::string bytes = bytesWithStack(48);
    const std::size_t sizeOfOne = bytes.size() - bytesWithStack(47).size();
    const std::size_t first = bytes.find("stats.so") - sizeof(std::uint32_t);
    bytes.insert(first, bytes.substr(first, sizeOfOne));
    const std::uint32_t tooMany = 49;
    std::memcpy(&bytes[first - sizeof tooMany], &tooMany, sizeof tooMany);
    EXPECT_FALSE(readMessage(bytes));
}

TEST(EventMessage, KeepsANote) {
    const EventMessage message = sent({Message_e::Note, 1, std::string("a\0b", 3)});
    EXPECT_EQ(std::get<std::string>(message.content), std::string("a\0b", 3));
}

TEST(EventMessage, KeepsThePathOfAnAddOn) {
    const EventMessage message = sent({Message_e::AddOnMapped, 1, std::string("/a b/stats.so")});
    EXPECT_EQ(std::get<std::string>(message.content), "/a b/stats.so");
}

TEST(EventMessage, CutsALongText) {
    const EventMessage message = sent({Message_e::Note, 1, std::string(kLongestText + 1, 'x')});
    EXPECT_EQ(std::get<std::string>(message.content), std::string(kLongestText, 'x'));
}

TEST(EventMessage, IsRefusedIfItIsIncompleteOrTooLong) {
    const std::string bytes =
        bytesOf({Message_e::CallBegan, 1, CallEvent{1, "VexaUtilSetAlloc", "", "", false, 1, {}, {}}});
    for (std::size_t size = 0; size != bytes.size(); ++size) {
        EXPECT_FALSE(readMessage(bytes.substr(0, size))) << size;
    }
    EXPECT_TRUE(readMessage(bytes));
    EXPECT_FALSE(readMessage(bytes + 'x'));
}

TEST(EventMessage, IsRefusedIfItsKindOrItsFunctionIsUnknown) {
    std::string bytes = bytesOf({Message_e::CallBegan, 1, CallEvent{1, "no such function", "", "", false, 1, {}, {}}});
    EXPECT_FALSE(readMessage(bytes));
    bytes.front() = 99;
    EXPECT_FALSE(readMessage(bytes));
}

}  // namespace
}  // namespace vexa::standin
