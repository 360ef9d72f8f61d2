#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <type_traits>

#include "text/TextBuffer.h"

namespace vexa::runner {

/// Builds the JSON text of trace events, one event per line.
///
///     EventText text(getpid());
///     text.event("E", "VexaUtilStringAlloc", "call", gettid(), now);
///     text.open("args").member("result", "string#1").close();
///     text.close();
///     text.hand(write);   // [\n{"name":"VexaUtilStringAlloc","cat":"call","ph":"E",...,"args":{"result":"string#1"}}
///
/// The first event starts the array; the others follow a comma. The text is built without the JSON library, because
/// every host call makes an event, and JSON objects are much slower.
class EventText {
public:
    using Time = std::chrono::steady_clock::time_point;

    explicit EventText(long process) : m_process(",\"pid\":" + std::to_string(process) + ",\"tid\":") {}

    /// Starts an event. More members may follow.
    EventText& event(std::string_view phase, std::string_view name, std::string_view category, long track, Time time);
    /// Adds an event that names a process or a thread, according to \p kind.
    void metadata(std::string_view kind, long track, std::string_view name);

    /// Starts a member that is an object.
    EventText& open(std::string_view name) { return json(name, "{"); }
    /// Ends an object, or the event.
    EventText& close();

    EventText& member(std::string_view name, std::string_view text);
    EventText& member(std::string_view name, const char* text) { return member(name, std::string_view(text)); }
    EventText& member(std::string_view name, bool value) { return json(name, value ? "true" : "false"); }
    template <class Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
    EventText& member(std::string_view name, Integer number) {
        begin(name);
        m_text.appendNumber(number);
        return *this;
    }
    /// Adds a member whose value is already JSON.
    EventText& json(std::string_view name, std::string_view value);
    /// Ends the array.
    void end() { m_text.append("\n]\n"); }

    /// Calls \p use with the text that was appended since the last call.
    template <class Use>
    void hand(const Use& use) {
        use(m_text.text());
        m_text.clear();
    }

private:
    void begin(std::string_view name);
    void beginEvent(std::string_view name);
    void appendTrack(long track);

    std::string m_process;  // the members that have the process and the track, up to the number of the track
    bool m_isFirst = true;
    TextBuffer m_text;
};

/// Appends \p text as a JSON string. Replaces invalid UTF-8.
void appendJsonString(TextBuffer& json, std::string_view text);

}  // namespace vexa::runner
