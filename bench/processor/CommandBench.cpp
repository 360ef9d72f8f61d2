// Compares the processor with a hand-written scan and with a string stream, for a whole command.
#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <iomanip>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "processor/Processor.h"
#include "support/Rows.h"

namespace vexa::vexautilutil {
namespace {

using bench::addSubject;

// The options of the command, in their order.
constexpr std::string_view kNames[] = {"ISVISIBLE", "TITLE", "SPEED", "COUNT", "STEP", "ZONES", "LABEL", "ISCAPPED"};
constexpr std::size_t kTypes = 8;

// The values of the last command. Each subject must read the same ones.
struct Values {
    char isVisible = 0;
    char isCapped = 0;
    std::string title;
    std::string label;
    double speed = 0;
    int32_t count = 0;
    int64_t step = 0;
    toolbox::Set zones;

    bool operator==(const Values& other) const {
        return isVisible == other.isVisible && isCapped == other.isCapped && title == other.title &&
               label == other.label && std::to_string(speed) == std::to_string(other.speed) && count == other.count &&
               step == other.step && zones.toString() == other.zones.toString();
    }
};

std::string commandText(std::size_t assignments) {
    using Writer = MacroCommandProcessorAbstract;
    toolbox::Set zones;
    zones.assign("[1-3,5,100-200]");
    std::string text = "Sweep ";
    for (std::size_t i = 0; i < assignments; ++i) {
        switch (i % kTypes) {
            case 0: text += Writer::toNameValueAssignment("IsVisible", char{1}); break;
            case 1: text += Writer::toNameValueAssignment("Title", std::string("Pressure at inlet")); break;
            case 2: text += Writer::toNameValueAssignment("Speed", 123.456 + static_cast<double>(i)); break;
            case 3: text += Writer::toNameValueAssignment("Count", static_cast<int32_t>(i)); break;
            case 4: text += Writer::toNameValueAssignment("Step", static_cast<int64_t>(1234567890123 + i)); break;
            case 5: text += Writer::toNameValueAssignment("Zones", zones) + ' '; break;
            case 6: text += Writer::toNameValueAssignment("Label", std::string("wake")); break;
            default: text += Writer::toNameValueAssignment("IsCapped", char{0}); break;
        }
    }
    return text;
}

// Reads the value of the next option from a source with a read() for each type.
template <class Source>
bool readValue(Source&& source, std::size_t turn, Values& values) {
    switch (turn % kTypes) {
        case 0: return source.read(values.isVisible);
        case 1: return source.read(values.title);
        case 2: return source.read(values.speed);
        case 3: return source.read(values.count);
        case 4: return source.read(values.step);
        case 5: return source.read(values.zones);
        case 6: return source.read(values.label);
        default: return source.read(values.isCapped);
    }
}

// ---- The processor

struct ByProcessor {
    bool read(char& value) { return processor.getBooleanValue(value); }
    bool read(std::string& value) { return processor.getStringValue(value, true); }
    bool read(double& value) { return processor.getDoubleValue(value); }
    bool read(int32_t& value) { return processor.getInt32Value(value); }
    bool read(int64_t& value) { return processor.getInt64Value(value); }
    bool read(toolbox::Set& value) { return processor.getSetValue(value); }

    MacroCommandProcessorAbstract& processor;
};

bool readByProcessor(MacroCommandProcessorAbstract& processor, Values& values) {
    std::string word;
    if (!processor.getCommand(word) || word != "SWEEP") return false;
    std::string name;
    for (std::size_t i = 0; processor.getNextName(name); ++i, name.clear()) {
        if (name != kNames[i % kTypes] || !readValue(ByProcessor{processor}, i, values)) return false;
    }
    return name.empty();
}

// ---- By hand: one pass over the text

class Cursor {
public:
    explicit Cursor(std::string_view text) : m_at(text.data()), m_end(text.data() + text.size()) {}

    std::string_view word() {
        skipBlanks();
        const char* const begin = m_at;
        while (m_at != m_end && !isBlank(*m_at)) ++m_at;
        return {begin, static_cast<std::size_t>(m_at - begin)};
    }

    bool takeEquals() {
        skipBlanks();
        return m_at != m_end && *m_at++ == '=';
    }

    template <class Number>
    bool read(Number& value) {
        const std::string_view token = word();
        const auto [behind, error] = std::from_chars(token.data(), token.data() + token.size(), value);
        return error == std::errc() && behind == m_at;
    }

    bool read(char& value) {
        std::string text(word());
        std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
        value = text == "T" || text == "TRUE" || text == "YES" ? 1 : 0;
        return value == 1 || text == "F" || text == "FALSE" || text == "NO";
    }

    bool read(std::string& value) {
        skipBlanks();
        value.clear();
        if (m_at == m_end || (*m_at != '"' && *m_at != '\'')) return false;
        const char quote = *m_at++;
        for (; m_at != m_end; ++m_at) {
            if (*m_at == quote) return ++m_at, true;
            if (*m_at == '\\' && ++m_at == m_end) return false;
            value += *m_at;
        }
        return false;
    }

    bool read(toolbox::Set& value) {
        skipBlanks();
        const char* const behind = std::find(m_at, m_end, ']');
        if (behind == m_end) return false;
        value.assign(std::string(std::exchange(m_at, behind + 1), behind + 1));
        return true;
    }

private:
    static bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
    void skipBlanks() {
        while (m_at != m_end && isBlank(*m_at)) ++m_at;
    }

    const char* m_at;
    const char* m_end;
};

std::string toUpper(std::string_view word) {
    std::string text(word);
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::toupper(c); });
    return text;
}

bool readByHand(const std::string& text, Values& values) {
    Cursor cursor(text);
    if (toUpper(cursor.word()) != "SWEEP") return false;
    for (std::size_t i = 0;; ++i) {
        const std::string name = toUpper(cursor.word());
        if (name.empty()) return true;
        if (!cursor.takeEquals() || name != kNames[i % kTypes] || !readValue(cursor, i, values)) return false;
    }
}

// ---- A string stream

class Stream {
public:
    explicit Stream(const std::string& text) : m_stream(text) {}

    bool word(std::string& word) {
        if (!(m_stream >> word)) return false;
        word = toUpper(word);
        return true;
    }

    bool takeEquals() {
        char c = 0;
        return m_stream >> c && c == '=';
    }

    template <class Number>
    bool read(Number& value) {
        return static_cast<bool>(m_stream >> value);
    }

    bool read(char& value) {
        std::string text;
        if (!word(text)) return false;
        value = text == "T" || text == "TRUE" || text == "YES" ? 1 : 0;
        return value == 1 || text == "F" || text == "FALSE" || text == "NO";
    }

    bool read(std::string& value) { return static_cast<bool>(m_stream >> std::quoted(value, '\'')); }

    bool read(toolbox::Set& value) {
        std::string text;
        if (!std::getline(m_stream >> std::ws, text, ']')) return false;
        value.assign(text + ']');
        return true;
    }

private:
    std::istringstream m_stream;
};

bool readByStream(const std::string& text, Values& values) {
    Stream stream(text);
    std::string name;
    if (!stream.word(name) || name != "SWEEP") return false;
    for (std::size_t i = 0; stream.word(name); ++i) {
        if (!stream.takeEquals() || name != kNames[i % kTypes] || !readValue(stream, i, values)) return false;
    }
    return true;
}

// ----

using Read = bool (*)(const std::string& text, Values& values);

Values valuesBy(Read read, const std::string& text) {
    Values values;
    if (!read(text, values)) std::abort();
    return values;
}

void add(const std::string& row, std::size_t assignments) {
    const std::string small = commandText(kTypes);
    if (!(valuesBy(readByHand, small) == valuesBy(readByStream, small))) std::abort();

    const auto measure = [assignments](Read read) {
        return [=](benchmark::State& state) {
            const std::string text = commandText(assignments * static_cast<std::size_t>(state.range(0)));
            Values values;
            for (auto _ : state) {
                const std::string copy(text);  // the processor copies the command, too
                if (!read(copy, values)) state.SkipWithError("the command was refused");
                benchmark::DoNotOptimize(values);
            }
        };
    };
    addSubject(row + "/scan", measure(readByHand));
    addSubject(row + "/istringstream", measure(readByStream));
    addSubject(row + "/ours", [assignments](benchmark::State& state) {
        const std::string text = commandText(assignments * static_cast<std::size_t>(state.range(0)));
        Values values;
        Processor processor([&](MacroCommandProcessorAbstract& all) { return readByProcessor(all, values); });
        for (auto _ : state) {
            char* errMsg = nullptr;
            if (!processor.parseCommandString(text.c_str(), &errMsg)) state.SkipWithError("the command was refused");
            benchmark::DoNotOptimize(values);
        }
        if (!(values == valuesBy(readByHand, text))) state.SkipWithError("the values differ");
    });
}

const bool isAdded = [] {
    add("command-8", 8);
    add("command-2000", 2000);
    return true;
}();

}  // namespace
}  // namespace vexa::vexautilutil
