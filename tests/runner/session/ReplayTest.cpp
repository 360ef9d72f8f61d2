#include "session/Replay.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

#include "vexa/AddOn.h"
#include "vexa/VexaUtil.h"

namespace vexa::runner {
namespace {

constexpr const char* kId = "RECORDER";

// The commands are called after what they record.
VexaBoolean record(const char* command, char** error) {
    const std::string text = command;
    if (text == "FAIL") {
        *error = VexaUtilStringAlloc(8, "error message");
        std::strcpy(*error, "no data");
        return 0;
    }
    if (text == "OTHER") return VexaUtilMacroRecordExtCommand(kId, "SOMETHING");
    if (text == "NOTHING") return 1;
    return VexaUtilMacroRecordExtCommand(kId, command);
}

const VexaAddOn_s* enterReplay(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, kId, nullptr, record, nullptr};
    return &description;
}

// The message of the finding about a recorded command; empty if it can be played back.
std::string messageOf(const std::string& addOnId, const std::string& command) {
    const SessionOptions options;
    const auto box = std::make_unique<ProcessBox>();
    Session session(options, *box);
    session.host().setRecording(true);
    session.host().linkAddOn(enterReplay);
    const auto finding = replay(session, {addOnId, command, {}});
    return finding ? finding->message : "";
}

std::string about(const std::string& command) {
    return "the recorded command \"" + command + "\", when it is run again, ";
}

TEST(ReplayTest, FindsNothingIfTheSameIsRecorded) { EXPECT_EQ(messageOf(kId, "SAME"), ""); }

TEST(ReplayTest, FindsThatTheCommandFails) {
    EXPECT_EQ(messageOf(kId, "FAIL"), about("RECORDER FAIL") + "fails: no data");
}

TEST(ReplayTest, FindsThatNothingIsRecorded) {
    EXPECT_EQ(messageOf(kId, "NOTHING"), about("RECORDER NOTHING") + "records nothing");
}

TEST(ReplayTest, FindsThatSomethingElseIsRecorded) {
    EXPECT_EQ(messageOf(kId, "OTHER"), about("RECORDER OTHER") + "records \"RECORDER SOMETHING\"");
}

TEST(ReplayTest, FindsThatTheAddOnIsMissing) {
    EXPECT_EQ(messageOf("MISSING", "SAME"), about("MISSING SAME") + "needs the add-on MISSING, which is not loaded");
}

}  // namespace
}  // namespace vexa::runner
