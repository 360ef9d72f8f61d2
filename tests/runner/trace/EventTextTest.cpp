#include "trace/EventText.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <chrono>
#include <nlohmann/json.hpp>

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;
using Time = EventText::Time;

std::string jsonOf(const std::string& text) {
    TextBuffer json;
    appendJsonString(json, text);
    return std::string(json.text());
}

std::string takeFrom(EventText& text) {
    std::string taken;
    text.hand([&](std::string_view all) { taken = all; });
    return taken;
}

TEST(EventText, HasTheMembersInTheirOrder) {
    EventText text(7);
    text.event("B", "call", "calls", 3, Time(std::chrono::nanoseconds(12003)));
    text.open("args").member("count", 2U).member("threw", true).close().json("more", "[1]").close();
    EXPECT_EQ(takeFrom(text),
              "[\n{\"name\":\"call\",\"cat\":\"calls\",\"ph\":\"B\",\"pid\":7,\"tid\":3,\"ts\":12.003,"
              "\"args\":{\"count\":2,\"threw\":true},\"more\":[1]}");
}

TEST(EventText, SeparatesEventsByCommas) {
    EventText text(7);
    text.metadata("thread_name", 1, "a");
    takeFrom(text);
    text.metadata("thread_name", 2, "b");
    EXPECT_EQ(takeFrom(text),
              ",\n{\"name\":\"thread_name\",\"ph\":\"M\",\"pid\":7,\"tid\":2,\"args\":{\"name\":\"b\"}}");
}

TEST(EventText, HandsEachEventOnce) {
    EventText text(7);
    text.metadata("thread_name", 1, "a");
    takeFrom(text);
    EXPECT_EQ(takeFrom(text), "");
}

RC_GTEST_PROP(EventTextProperty, TellsTimesToTheNanosecond, ()) {
    const auto nanoseconds = *rc::gen::inRange<int64_t>(0, int64_t{1} << 53);
    EventText text(7);
    text.event("B", "call", "calls", 3, Time(std::chrono::nanoseconds(nanoseconds))).close();
    const Json event = Json::parse(takeFrom(text).substr(1));
    RC_ASSERT(event.at("ts").get<double>() == static_cast<double>(nanoseconds) / 1000);
}

RC_GTEST_PROP(JsonStringProperty, IsThatOfTheLibrary, (const std::string& text)) {
    RC_ASSERT(jsonOf(text) == Json(text).dump(-1, ' ', false, Json::error_handler_t::replace));
}

RC_GTEST_PROP(JsonStringProperty, IsThatOfTheLibraryForPrintableTexts, ()) {
    const auto text = *rc::gen::container<std::string>(rc::gen::inRange(' ', '\x7f'));
    RC_ASSERT(jsonOf(text) == Json(text).dump());
}

}  // namespace
}  // namespace vexa::runner
