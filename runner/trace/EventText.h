#pragma once

#include <charconv>
#include <chrono>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>

namespace vexa::runner {

/// Trace events as a JSON text, an event a line, put together by appending.
///
///     EventText text(getpid());
///     text.event("E", "VexaUtilStringAlloc", "call", gettid(), now);
///     text.open("args").member("result", "string#1").close();
///     text.close();
///     text.hand(write);   // [\n{"name":"VexaUtilStringAlloc","cat":"call","ph":"E",...,"args":{"result":"string#1"}}
///
/// The first event is preceded by the bracket that opens the array, all others by a comma.
/// By hand, for this is done at every host call: to make an object of each event, as is done for the few that are told
/// otherwise, takes ten times as long.
class EventText {
public:
    using Time = std::chrono::steady_clock::time_point;

    explicit EventText(long process) : m_process(process) {}

    /// Begins an event. Further members may follow.
    EventText& event(std::string_view phase, std::string_view name, std::string_view category, long track, Time time);
    /// Adds an event that names a process or a thread, whichever \p kind says.
    void metadata(std::string_view kind, long track, std::string_view name);

    /// Begins a member that is an object.
    EventText& open(std::string_view name);
    /// Ends an object, or the event.
    EventText& close();

    EventText& member(std::string_view name, std::string_view text);
    EventText& member(std::string_view name, const char* text) { return member(name, std::string_view(text)); }
    EventText& member(std::string_view name, bool value);
    template <class Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
    EventText& member(std::string_view name, Integer number) {
        begin(name);
        append(number);
        return *this;
    }
    /// Adds a member whose value is JSON already.
    EventText& json(std::string_view name, std::string_view value);
    /// Ends the array.
    void end() { m_text += "\n]\n"; }

    /// Has \p use use what was appended since the last time.
    template <class Use>
    void hand(const Use& use) {
        use(std::string_view(m_text));
        m_text.clear();
    }

private:
    void begin(std::string_view name);
    void beginEvent(std::string_view name);
    template <class Integer>
    void append(Integer number) {
        char digits[std::numeric_limits<Integer>::digits10 + 2];
        m_text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
    }
    void appendTime(Time time);

    long m_process;
    bool m_isFirst = true;
    std::string m_text;
};

/// Appends \p text as a JSON string. What is no UTF-8 is replaced.
void appendJsonString(std::string& json, std::string_view text);

}  // namespace vexa::runner
