#include "trace/EventText.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace vexa::runner {
namespace {

bool isPrintableAscii(char c) { return c >= ' ' && c <= '~'; }

bool isPlain(char c) { return isPrintableAscii(c) && c != '"' && c != '\\'; }

// Appends a time in microseconds with three decimals. The clock starts with the machine.
void appendTime(TextBuffer& text, EventText::Time time) {
    constexpr long kThousand = 1000;
    constexpr long kTen = 10;
    const long nanoseconds = std::chrono::nanoseconds(time.time_since_epoch()).count();
    const long fraction = nanoseconds % kThousand;
    const auto digit = [](long value) { return static_cast<char>('0' + value % kTen); };
    const char decimals[] = {'.', digit(fraction / (kTen * kTen)), digit(fraction / kTen), digit(fraction)};
    text.appendNumber(nanoseconds / kThousand);
    text.append({decimals, sizeof decimals});
}

}  // namespace

// Nearly all texts are plain. The JSON library handles what is not printable.
void appendJsonString(TextBuffer& json, std::string_view text) {
    const auto special = std::find_if_not(text.begin(), text.end(), isPlain);
    if (!std::all_of(special, text.end(), isPrintableAscii)) {
        return json.append(nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
    }
    const auto plain = static_cast<std::size_t>(special - text.begin());
    json.append('"');
    json.append(text.substr(0, plain));
    for (const char c : text.substr(plain)) {
        if (!isPlain(c)) json.append('\\');
        json.append(c);
    }
    json.append('"');
}

// Categories and phases are our own and need no escapes.
EventText& EventText::event(std::string_view phase, std::string_view name, std::string_view category, long track,
                            Time time) {
    beginEvent(name);
    m_text.append(R"(,"cat":")");
    m_text.append(category);
    m_text.append(R"(","ph":")");
    m_text.append(phase);
    m_text.append('"');
    appendTrack(track);
    m_text.append(",\"ts\":");
    appendTime(m_text, time);
    return *this;
}

void EventText::metadata(std::string_view kind, long track, std::string_view name) {
    beginEvent(kind);
    m_text.append(R"(,"ph":"M")");
    appendTrack(track);
    open("args").member("name", name).close().close();
}

EventText& EventText::close() {
    m_text.append('}');
    return *this;
}

EventText& EventText::member(std::string_view name, std::string_view text) {
    begin(name);
    appendJsonString(m_text, text);
    return *this;
}

EventText& EventText::json(std::string_view name, std::string_view value) {
    begin(name);
    m_text.append(value);
    return *this;
}

// Names of members are our own and need no escapes.
void EventText::begin(std::string_view name) {
    if (m_text.text().back() != '{') m_text.append(',');
    m_text.append('"');
    m_text.append(name);
    m_text.append("\":");
}

void EventText::beginEvent(std::string_view name) {
    m_text.append(m_isFirst ? "[\n{\"name\":" : ",\n{\"name\":");
    m_isFirst = false;
    appendJsonString(m_text, name);
}

void EventText::appendTrack(long track) {
    m_text.append(m_process);
    m_text.appendNumber(track);
}

}  // namespace vexa::runner
