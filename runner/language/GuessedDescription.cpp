#include "language/GuessedDescription.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "language/Descriptions.h"
#include "language/ValueText.h"

namespace vexa::runner {
namespace {

constexpr const char* kOptionBlanks = " \t";

// Reads a command without a description: names, equals signs and values.
class CommandReader {
public:
    explicit CommandReader(std::string_view text) : m_text(text) {}

    std::string word() {
        return take([](char c) { return c == ' ' || c == '\t'; });
    }

    // Returns false at the end, and at a name without an equals sign.
    bool next() {
        name = take([](char c) { return c == ' ' || c == '\t' || c == '='; });
        isApart = !m_text.empty() && m_text.front() != '=';
        skipBlanks();
        if (m_text.empty() || m_text.front() != '=') return false;
        m_text.remove_prefix(1);
        skipBlanks();
        value = takeValue();
        return true;
    }

    std::string name;
    std::string value;     // with its quotes or brackets
    bool isApart = false;  // a blank precedes the equals sign

private:
    void skipBlanks() { m_text.remove_prefix(std::min(m_text.find_first_not_of(kOptionBlanks), m_text.size())); }

    template <class IsEnd>
    std::string take(IsEnd isEnd) {
        skipBlanks();
        const auto end = std::find_if(m_text.begin(), m_text.end(), isEnd);
        std::string taken(m_text.begin(), end);
        m_text.remove_prefix(taken.size());
        return taken;
    }

    std::string takeValue() {
        if (m_text.empty()) return "";
        const char first = m_text.front();
        if (first != '\'' && first != '"' && first != '[') {
            return take([](char c) { return c == ' ' || c == '\t'; });
        }
        const char last = first == '[' ? ']' : first;
        std::size_t end = 1;
        while (end < m_text.size() && m_text[end] != last) {
            const bool isEscaped = m_text[end] == '\\' && last != ']';
            end += isEscaped ? 2U : 1U;
        }
        std::string taken(m_text.substr(0, end + 1));
        m_text.remove_prefix(taken.size());
        return taken;
    }

    std::string_view m_text;
};

// The types that a value may have. An option has the first type that fits all its values.
bool mayBe(OptionType_e type, const std::string& value, CommandKind_e kind) {
    OptionDescription option;
    option.type = type;
    return !whyWrong(value, option, kind);
}

const std::vector<OptionType_e>& guessedTypes(CommandKind_e kind) {
    static const std::vector<OptionType_e> command = {OptionType_e::Boolean, OptionType_e::UInt64, OptionType_e::Set,
                                                      OptionType_e::String};
    static const std::vector<OptionType_e> processor = {OptionType_e::Boolean, OptionType_e::Int64,
                                                        OptionType_e::Double, OptionType_e::Set, OptionType_e::String};
    return kind == CommandKind_e::Command ? command : processor;
}

// The values of each option of one command.
struct SeenCommand {
    struct Seen {
        std::string name;
        std::vector<std::string> values;
    };
    std::string name;
    CommandKind_e kind = CommandKind_e::Processor;
    std::vector<Seen> options = {};
    std::vector<std::string> examples = {};

    void add(const std::string& option, const std::string& value) {
        for (Seen& seen : options) {
            if (seen.name == option) return seen.values.push_back(value);
        }
        options.push_back({option, {value}});
    }
};

std::string toUpperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

SeenCommand& seenCommand(std::vector<SeenCommand>& all, const std::string& name) {
    for (SeenCommand& seen : all) {
        if (seen.name == name) return seen;
    }
    all.push_back({name});
    return all.back();
}

void see(const std::string& text, std::vector<SeenCommand>& all) {
    CommandReader reader(text);
    SeenCommand& seen = seenCommand(all, toUpperCase(reader.word()));
    seen.examples.push_back(text);
    while (reader.next()) {
        if (!reader.isApart) seen.kind = CommandKind_e::Command;
        seen.add(reader.isApart ? toUpperCase(reader.name) : reader.name, reader.value);
    }
}

OptionDescription guessedOption(const SeenCommand::Seen& seen, CommandKind_e kind) {
    OptionDescription option;
    option.name = seen.name;
    for (const OptionType_e type : guessedTypes(kind)) {
        option.type = type;
        const auto fits = [&](const std::string& value) { return mayBe(type, value, kind); };
        if (std::all_of(seen.values.begin(), seen.values.end(), fits)) break;
    }
    return option;
}

}  // namespace

AddOnDescription guessedDescription(const std::string& addOn, const std::vector<std::string>& commands) {
    std::vector<SeenCommand> all;
    for (const std::string& text : commands) see(text, all);
    AddOnDescription description{addOn, {}};
    for (SeenCommand& seen : all) {
        CommandDescription command;
        command.name = seen.name;
        command.kind = seen.kind;
        command.examples = seen.examples;
        for (const SeenCommand::Seen& option : seen.options)
            command.options.push_back(guessedOption(option, seen.kind));
        description.commands.push_back(std::move(command));
    }
    return description;
}

}  // namespace vexa::runner
