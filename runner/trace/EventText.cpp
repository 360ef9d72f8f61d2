#include "trace/EventText.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace vexa::runner {
namespace {

bool isPrintableAscii(char c) { return c >= ' ' && c <= '~'; }

// Returns a time in microseconds with three decimals. The clock starts with the machine.
std::string textOf(EventText::Time time) {
    constexpr long kThousand = 1000;
    const long nanoseconds = std::chrono::nanoseconds(time.time_since_epoch()).count();
    std::string fraction = std::to_string(kThousand + nanoseconds % kThousand);  // keeps the leading zeros
    fraction.front() = '.';
    return std::to_string(nanoseconds / kThousand) + fraction;
}

}  // namespace

// Fast path for printable ASCII; the JSON library handles the rest.
void appendJsonString(std::string& json, std::string_view text) {
    if (!std::all_of(text.begin(), text.end(), isPrintableAscii)) {
        json += nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
        return;
    }
    json += '"';
    for (const char c : text) {
        if (c == '"' || c == '\\') json += '\\';
        json += c;
    }
    json += '"';
}

EventText& EventText::event(std::string_view phase, std::string_view name, std::string_view category, long track,
                            Time time) {
    beginEvent(name);
    member("cat", category).member("ph", phase).member("pid", m_process).member("tid", track);
    return json("ts", textOf(time));
}

void EventText::metadata(std::string_view kind, long track, std::string_view name) {
    beginEvent(kind);
    member("ph", "M").member("pid", m_process).member("tid", track).open("args").member("name", name).close().close();
}

EventText& EventText::close() {
    m_text += '}';
    return *this;
}

EventText& EventText::member(std::string_view name, std::string_view text) {
    begin(name);
    appendJsonString(m_text, text);
    return *this;
}

EventText& EventText::json(std::string_view name, std::string_view value) {
    begin(name);
    m_text += value;
    return *this;
}

// Names of members are our own and need no escapes.
void EventText::begin(std::string_view name) {
    if (m_text.back() != '{') m_text += ',';
    m_text += '"';
    m_text += name;
    m_text += "\":";
}

void EventText::beginEvent(std::string_view name) {
    m_text += m_isFirst ? "[\n{" : ",\n{";
    m_isFirst = false;
    member("name", name);
}

}  // namespace vexa::runner
