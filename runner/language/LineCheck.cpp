#include "language/LineCheck.h"

#include <algorithm>
#include <set>
#include <string>
#include <utility>

#include "language/MacroLine.h"
#include "language/ValueText.h"
#include "text/Joined.h"
#include "text/NearNames.h"
#include "text/ShortText.h"
#include "text/StartsWith.h"

namespace vexa::runner {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// "; did you mean X?", or the list of all names.
std::string hintFor(std::string_view name, const std::vector<std::string>& names, const std::string& whose) {
    if (names.empty()) return "";
    const std::vector<std::string> near = nearNames(shortText(name), names);
    if (!near.empty()) return "; did you mean " + alternatives(near) + '?';
    return "; " + whose + ' ' + joined(names, ", ");
}

class LineCheck {
public:
    LineCheck(std::string_view line, const Descriptions& descriptions)
        : m_line(line), m_descriptions(descriptions), m_parts(parseLine(line, descriptions)) {}

    std::vector<Diagnostic> diagnostics() {
        if (m_parts.isCommand()) checkCommandWord();
        return std::move(m_found);
    }

private:
    std::string text(Span span) const { return shortText(textOf(span, m_line)); }

    void report(const char* rule, Span span, std::string message,
                standin::Severity_e severity = standin::Severity_e::Error) {
        m_found.push_back({rule, std::move(message), span, 1, severity});
    }

    void checkCommandWord() {
        const Span word = m_parts.word;
        if (m_parts.addOn == nullptr) {
            const std::vector<std::string> ids = m_descriptions.ids();
            return report(kUnknownAddOn, m_parts.id,
                          "no description has the add-on " + text(m_parts.id) +
                              hintFor(text(m_parts.id), ids, ids.size() == 1 ? "described is" : "described are"));
        }
        if (word.isEmpty()) return report(kUnknownCommand, m_parts.id, "expected a command after " + text(m_parts.id));
        if (m_parts.command == nullptr) {
            return report(kUnknownCommand, word,
                          m_parts.addOn->addOn + " has no command " + text(word) +
                              hintFor(text(word), commandNames(*m_parts.addOn), "its commands are"));
        }
        const CommandDescription& command = *m_parts.command;
        if (command.kind == CommandKind_e::Command && textOf(word, m_line) != command.name) {
            report(kUnknownCommand, word,
                   "the add-on may expect " + command.name + ", in this letter case, but found " + text(word),
                   standin::Severity_e::Warning);
        }
        for (const WrittenOption& option : m_parts.options) checkOption(option);
        checkRequired();
    }

    void checkOption(const WrittenOption& option) {
        const CommandDescription& command = *m_parts.command;
        const Span whole = option.name.isEmpty() ? Span{option.name.begin, option.name.end + 1} : option.name;
        if (option.name.isEmpty()) {
            return report(kWrongAssignment, whole, "expected the name of an option before =");
        }
        if (option.description == nullptr) {
            return report(kUnknownOption, whole,
                          command.name + " has no option " + text(option.name) +
                              hintFor(text(option.name), optionNames(command), "its options are"));
        }
        const OptionDescription& description = *option.description;
        if (!m_given.insert(&description).second && !description.isRepeatable) {
            report(kRepeatedOption, whole, "the option " + description.name + " is given twice");
        }
        if (!option.hasAssign) return report(kWrongAssignment, whole, "expected = after " + text(option.name));
        checkBlanks(option);
        checkValue(option);
    }

    void checkBlanks(const WrittenOption& option) {
        const bool isProcessor = m_parts.command->kind == CommandKind_e::Processor;
        // The processor also takes a value right after the equals sign.
        const bool isRight = isProcessor ? m_line[option.name.end] != '=' : option.isTight;
        if (isRight || option.value.isEmpty()) return;
        const std::string right = assignment(option.description->name, text(option.value), m_parts.command->kind);
        report(kWrongAssignment, {option.name.begin, option.value.begin},
               isProcessor ? "expected a blank before =: " + right : "expected no blanks around =: " + right);
    }

    void checkValue(const WrittenOption& option) {
        const std::string_view written = textOf(option.value, m_line);
        const CommandKind_e kind = m_parts.command->kind;
        const Span span = option.value.isEmpty() ? option.name : option.value;
        const std::string name = option.description->name + ": ";
        if (const auto wrong = whyWrong(written, *option.description, kind)) {
            return report(wrong->rule, span, name + wrong->reason);
        }
        if (written == "[]" && kind == CommandKind_e::Processor) {
            return report(kWrongBracket, span, name + "the command processor leaves the ] of [] unread; write [ ]",
                          standin::Severity_e::Warning);
        }
        if (!option.rest.isEmpty()) report(kWrongValue, option.rest, name + "expected a blank after the value");
    }

    void checkRequired() {
        for (const OptionDescription& option : m_parts.command->options) {
            if (!option.isRequired || m_given.count(&option) != 0) continue;
            report(kMissingOption, m_parts.word, m_parts.command->name + " needs the option " + option.name);
        }
    }

    std::string_view m_line;
    const Descriptions& m_descriptions;
    MacroLine m_parts;
    std::set<const OptionDescription*> m_given;
    std::vector<Diagnostic> m_found;
};

// Returns the diagnostic of a byte that no line may have; empty if there is none.
std::vector<Diagnostic> checkBytes(std::string_view line) {
    const std::size_t wrong = line.find_first_of(std::string_view("\r\0", 2));
    if (wrong == std::string_view::npos) return {};
    const char* const what = line[wrong] == '\r' ? "a carriage return" : "a NUL byte";
    return {{kWrongLine, std::string("the line contains ") + what, {wrong, wrong + 1}}};
}

}  // namespace

std::vector<Diagnostic> checkLine(std::string_view line, const Descriptions& descriptions) {
    std::vector<Diagnostic> found = checkBytes(line);
    return found.empty() ? LineCheck(line, descriptions).diagnostics() : found;
}

Span commandPart(std::string_view line, bool isFirst) {
    Span part{isFirst && startsWith(line, kByteOrderMark) ? kByteOrderMark.size() : 0, line.size()};
    if (!part.isEmpty() && line.back() == '\r') --part.end;
    return part;
}

std::vector<Diagnostic> checkFileLine(std::string_view line, bool isFirst, const Descriptions& descriptions) {
    const Span part = commandPart(line, isFirst);
    std::vector<Diagnostic> found = checkLine(textOf(part, line), descriptions);
    for (Diagnostic& diagnostic : found) {
        diagnostic.span.begin += part.begin;
        diagnostic.span.end += part.begin;
    }
    return found;
}

std::vector<Diagnostic> checkText(std::string_view text, const Descriptions& descriptions) {
    std::vector<Diagnostic> all;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        for (Diagnostic& diagnostic : checkFileLine(text.substr(0, end), number == 1, descriptions)) {
            diagnostic.line = number;
            all.push_back(std::move(diagnostic));
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return all;
}

std::vector<Diagnostic> checkCommand(std::string_view command, const AddOnDescription& addOn) {
    return checkLine(addOn.addOn + ' ' + std::string(command), Descriptions(addOn));
}

}  // namespace vexa::runner
