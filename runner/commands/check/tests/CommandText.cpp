#include "commands/check/tests/CommandText.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "text/CommandWords.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kVeryLong = 70000;  // more than 64 KiB
constexpr std::size_t kManyOptions = 5000;
constexpr std::size_t kMostCuts = 400;  // a longer text is cut at only so many places

// Values of every kind, and texts that nearly are values.
constexpr const char* kValues[] = {"",
                                   "TRUE",
                                   "-1",
                                   "0",
                                   "1.5",
                                   "1e999",
                                   "nan",
                                   "99999999999999999999",
                                   "'text'",
                                   "\"text\"",
                                   "''",
                                   "'",
                                   "\"",
                                   "'\\",
                                   "[1-3]",
                                   "[]",
                                   "[",
                                   "]",
                                   "[3-1]",
                                   "[1,",
                                   "[0-9223372036854775807]",
                                   "[1-9000000000:2]",
                                   "=",
                                   "\\",
                                   "text",
                                   "'\xC3\xA4\xFF'",
                                   "%s%n"};

class Damages {
public:
    explicit Damages(const std::string& text) : m_text(text), m_command(text) {}

    std::vector<DamagedText> all() {
        options();
        cuts();
        bytes();
        return std::move(m_damages);
    }

private:
    void add(std::string how, std::string text) { m_damages.push_back({std::move(how), std::move(text)}); }
    void add(std::string how, const CommandWords& command) { add(std::move(how), command.text()); }

    void replace(std::string how, std::size_t i, CommandWords::Option option) {
        CommandWords changed = m_command;
        changed.options[i] = std::move(option);
        add(std::move(how), changed);
    }

    void options() {
        CommandWords changed = m_command;
        changed.word.clear();
        add("without its first word", changed);
        for (std::size_t i = 0; i != m_command.options.size(); ++i) option(i);
        std::string swollen = m_command.word;
        for (std::size_t i = 0; i != kManyOptions; ++i) swollen += " N" + std::to_string(i) + " = 1";
        add("with very many options", swollen);
        add("with a very long first word", m_command.word + std::string(kVeryLong, 'A'));
        add("with very many blanks after it", m_text + std::string(kVeryLong, ' '));
    }

    void option(std::size_t i) {
        const auto& [name, value] = m_command.options[i];
        CommandWords changed = m_command;
        changed.options.erase(changed.options.begin() + static_cast<std::ptrdiff_t>(i));
        add("without " + name, changed);
        changed = m_command;
        changed.options.push_back(changed.options[i]);
        add("with " + name + " twice", changed);
        if (i != 0) {
            changed = m_command;
            std::swap(changed.options[i - 1], changed.options[i]);
            add("with " + name + " before the option before it", changed);
        }
        for (const std::string other : kValues) {
            std::string what = name;
            replace(what.append(" = ").append(other), i, {name, other});
        }
        quotesWithin(i);
        std::string set = "[1";
        for (std::size_t n = 3; set.size() < kVeryLong; n += 2) set += ',' + std::to_string(n);
        replace("without the = of " + name, i, {name + ' ' + value, ""});
        replace("with nothing after the = of " + name, i, {name + " =", ""});
        replace("with two = of " + name, i, {name, "= " + value});
        replace("without the name " + name, i, {"", value});
        replace("with a very long name", i, {name + std::string(kVeryLong, 'A'), value});
        replace("with a very long value of " + name, i, {name, '\'' + std::string(kVeryLong, 'a') + '\''});
        replace("with a very long number for " + name, i, {name, std::string(kVeryLong, '1')});
        replace("with a very long set for " + name, i, {name, set + ']'});
    }

    // Tests that the add-on reads quotes and escapes in a quoted text, and records them so that they can be read again.
    void quotesWithin(std::size_t i) {
        const auto& [name, value] = m_command.options[i];
        if (value.size() < 2 || (value.front() != '\'' && value.front() != '"')) return;
        for (const std::string within : {"''", "\"\"", "\\'", "\\\"", "\\\\", "'", "\""}) {
            std::string changed = value;
            std::string what = "with ";
            what.append(within).append(" within ").append(name);
            replace(what, i, {name, changed.insert(value.size() / 2, within)});
        }
    }

    void cuts() {
        const std::size_t step = m_text.size() / kMostCuts + 1;
        for (std::size_t at = 1; at < m_text.size(); at += step) {
            add("cut after byte " + std::to_string(at), m_text.substr(0, at));
        }
        for (std::size_t at = 1; at < m_text.size(); at += step) {
            add("without its first " + std::to_string(at) + " bytes", m_text.substr(at));
        }
    }

    void bytes() {
        for (std::size_t at = 0; at != m_text.size(); ++at) {
            if (std::string_view("'\"=[]").find(m_text[at]) == std::string_view::npos) continue;
            std::string text = m_text;
            text.erase(at, 1);
            add("without byte " + std::to_string(at + 1), text);
        }
        for (const char byte : std::string_view("\x01\t\n\r\x1B\x7F\x80\xC3\xFF'\"\\=[]")) {
            for (const std::size_t at : {m_text.size() / 3, m_text.size() * 2 / 3, m_text.size()}) {
                std::string text = m_text;
                text.insert(at, 1, byte);
                add("with a strange byte after byte " + std::to_string(at), text);
            }
        }
    }

    const std::string& m_text;
    CommandWords m_command;
    std::vector<DamagedText> m_damages;
};

std::size_t below(std::mt19937_64& random, std::size_t limit) {
    return static_cast<std::size_t>(random() % std::max<std::size_t>(limit, 1));
}

void damageOnce(std::string& text, std::mt19937_64& random) {
    const std::size_t at = below(random, text.size() + 1);
    const std::size_t length = 1 + below(random, 12);
    switch (below(random, 6)) {
        case 0: text.erase(at, length); break;
        case 1: text.insert(at, text.substr(at, length)); break;
        case 2: text.insert(at, 1, static_cast<char>(1 + below(random, 255))); break;
        case 3: text.insert(at, kValues[below(random, std::size(kValues))]); break;
        case 4: text.insert(at, text.substr(below(random, text.size()), length)); break;
        default:
            if (at != text.size()) text[at] = static_cast<char>(1 + below(random, 255));
    }
}

}  // namespace

std::vector<DamagedText> strangeTexts() {
    std::vector<DamagedText> texts;
    std::string every;
    for (int byte = 1; byte != 256; ++byte) {
        const std::string one(1, static_cast<char>(byte));
        every += one;
        texts.push_back({"byte " + std::to_string(byte) + " alone", one});
    }
    texts.push_back({"every possible byte", every});
    for (const char* const text : kValues) texts.push_back({"a value alone", text});
    for (const char byte : std::string_view("A '\"[=\\1\xFF")) {
        texts.push_back({"the same byte very often", std::string(kVeryLong, byte)});
    }
    for (const char* const text : {" ", "NAME =", "NAME = 'text'", "A = 1 A = 1", "= 1", "'a' 'b'"}) {
        texts.push_back({"a strange text", text});
    }
    return texts;
}

std::vector<DamagedText> damaged(const std::string& text) { return Damages(text).all(); }

std::string damagedAtRandom(std::string text, std::mt19937_64& random) {
    for (std::size_t times = 1 + below(random, 4); times != 0; --times) damageOnce(text, random);
    return text;
}

}  // namespace vexa::runner
