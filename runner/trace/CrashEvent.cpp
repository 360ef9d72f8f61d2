#include "trace/CrashEvent.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "stacks/StackText.h"
#include "system/Descriptor.h"
#include "text/Lines.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kLongestEnd = std::size_t{1} << 20;  // the last events are in it

std::string jsonText(const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace); }

// The frames up to the outermost one of the add-on.
Json framesOf(const StackReport& report) {
    Json lines = Json::array();
    if (report.threads.empty()) return lines;
    const ThreadStack& thread = report.threads.front();
    const std::size_t count = thread.hasOwn() ? thread.ownEnd : thread.frames.size();
    const Stack frames(thread.frames.begin(), thread.frames.begin() + static_cast<std::ptrdiff_t>(count));
    for (const std::string& line : linesOf(textOf(frames))) lines.push_back(line);
    return lines;
}

// The end of a trace that was not finished.
class TraceEnd {
public:
    explicit TraceEnd(const std::string& path) : m_file(open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC)) {
        struct stat status {};
        if (!m_file.isOpen() || fstat(m_file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return;
        m_begin = std::max<off_t>(0, status.st_size - static_cast<off_t>(kLongestEnd));
        m_text.resize(static_cast<std::size_t>(status.st_size - m_begin));
        if (pread(m_file.get(), m_text.data(), m_text.size(), m_begin) != static_cast<ssize_t>(m_text.size())) {
            m_text.clear();
        }
    }

    // Returns the last event that has a time; null if there is none. All lines but the last one end with a comma.
    Json lastEvent() {
        Json last;
        for (std::size_t end = m_text.size(); end != 0 && last.is_null();) {
            const std::size_t start = m_text.rfind('\n', end - 1);
            if (start == std::string::npos) break;
            const std::size_t wholeEnd = m_text[end - 1] == ',' ? end - 1 : end;
            const Json event = Json::parse(m_text.substr(start + 1, wholeEnd - start - 1), nullptr, false);
            if (event.is_object() && m_wholeEnd == 0) m_wholeEnd = wholeEnd;
            if (event.is_object() && event.contains("ts")) last = event;
            end = start;
        }
        return last;
    }

    // Writes an event after the last whole one.
    void append(const Json& event) {
        const std::string text = ",\n" + jsonText(event);
        const off_t end = m_begin + static_cast<off_t>(m_wholeEnd);
        if (ftruncate(m_file.get(), end) != 0) return;
        (void)!pwrite(m_file.get(), text.data(), text.size(), end);
    }

private:
    Descriptor m_file;
    off_t m_begin = 0;           // the offset of the text in the file
    std::string m_text;          // empty if the file cannot be read
    std::size_t m_wholeEnd = 0;  // of the last whole event in the text
};

}  // namespace

std::string crashArguments(const Crash& crash) {
    const StackReport& stacks = crash.stacks;
    Json arguments = {{"message", crash.message},
                      {"signal", stacks.signal},
                      {"fault", stacks.fault},
                      {"problem", stacks.problem},
                      {"stack", framesOf(stacks)}};
    if (const Frame* const own = stacks.ownFrame()) {
        arguments["source"] = {
            {"function", own->function}, {"file", own->file}, {"line", own->line}, {"text", "at " + textOf(*own)}};
    }
    return jsonText(arguments);
}

void appendCrash(const std::string& file, const Crash& crash) {
    TraceEnd trace(file);
    const Json last = trace.lastEvent();
    if (last.is_null()) return;
    Json event = {{"name", "crash"}, {"cat", "crash"}, {"ph", "i"}};
    for (const char* const name : {"pid", "tid", "ts"}) event[name] = last.value(name, Json(0));
    event["s"] = "p";
    event["args"] = Json::parse(crashArguments(crash));
    trace.append(event);
}

}  // namespace vexa::runner
