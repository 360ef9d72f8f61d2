#include "trace/CrashEvent.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "support/TemporaryFolder.h"
#include "system/files/WholeFile.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;

const std::string kStart =
    "[\n{\"name\":\"run\",\"pid\":3,\"tid\":3,\"ts\":1.5},\n{\"name\":\"call\",\"pid\":3,\"tid\":4,\"ts\":2.5}";

Crash someCrash() {
    ThreadStack stack;
    stack.frames = {{"raise", "", 0, "/lib/libc.so.6", 0x10},
                    {"mean()", "/no/Stats.cpp", 42, "/x/stats.so", 0},
                    {"main", "/no/host.c", 5, "/x/host", 0}};
    stack.ownBegin = 1;
    stack.ownEnd = 2;
    return {"it ended", {SIGSEGV, "address 0x10", {stack}, ""}};
}

class CrashEvent : public ::testing::Test {
protected:
    std::string added(const std::string& trace) {
        const std::string file = m_folder.write("t", trace);
        appendCrash(file, someCrash());
        return readWholeFile(file);
    }

    tests::TemporaryFolder m_folder;
};

TEST_F(CrashEvent, HasTheLineAndTheStackUpToTheAddOn) {
    const Json arguments = Json::parse(crashArguments(someCrash()));
    EXPECT_EQ(arguments.at("message"), "it ended");
    EXPECT_EQ(arguments.at("signal"), SIGSEGV);
    EXPECT_EQ(arguments.at("fault"), "address 0x10");
    EXPECT_EQ(arguments.at("stack"), Json({"#0  raise+0x10 in libc.so.6", "#1  /no/Stats.cpp:42, in mean"}));
    EXPECT_EQ(arguments.at("source").at("line"), 42);
    EXPECT_EQ(arguments.at("source").at("text"), "at /no/Stats.cpp:42, in mean");
}

TEST_F(CrashEvent, HasNoSourceWithoutAStack) {
    const Json arguments = Json::parse(crashArguments({"it ended", {SIGSEGV, "", {}, "nobody may look"}}));
    EXPECT_FALSE(arguments.contains("source"));
    EXPECT_EQ(arguments.at("problem"), "nobody may look");
    EXPECT_TRUE(arguments.at("stack").empty());
}

TEST_F(CrashEvent, FollowsTheLastEventAtItsTime) {
    const std::string text = added(kStart);
    ASSERT_EQ(text.rfind(kStart + ",\n", 0), 0U) << text;
    const Json event = Json::parse(text.substr(kStart.size() + 2));
    EXPECT_EQ(event.at("cat"), "crash");
    EXPECT_EQ(event.at("ts"), 2.5);
    EXPECT_EQ(event.at("tid"), 4);
    EXPECT_EQ(event.at("args"), Json::parse(crashArguments(someCrash())));
}

TEST_F(CrashEvent, ReplacesAnEventThatIsNotWhole) {
    const std::string whole = added(kStart);
    for (const char* const part : {",", ",\n", ",\n{", ",\n{\"name\":\"VexaUtilLockSt"}) {
        EXPECT_EQ(added(kStart + part), whole) << part;
    }
}

TEST_F(CrashEvent, LeavesAFileThatIsNoTraceAlone) {
    for (const char* const text : {"", "[", "[\n", "text\n", "{\"ts\":1}"}) EXPECT_EQ(added(text), text);
    const std::string missing = m_folder.path() + "/missing";
    appendCrash(missing, someCrash());
    EXPECT_FALSE(std::filesystem::exists(missing));
}

}  // namespace
}  // namespace vexa::runner
