#include "commands/check/ToldCauses.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "text/Lines.h"
#include "text/ShortText.h"
#include "text/StartsWith.h"

namespace vexa::runner {
namespace {

constexpr std::string_view kIndentation = "    ";
constexpr std::string_view kDigits = "0123456789";
// The starts of lines that give the context of a cause, and the starts of continuation lines.
constexpr std::string_view kContext[] = {"tried: ",
                                         "during: ",
                                         "after: ",
                                         "in host call ",
                                         "last host call: ",
                                         "it had not called the host",
                                         "the add-on had not been called",
                                         "the process ran out of memory",
                                         "the last output:",
                                         "a smaller macro shows the same error:"};
constexpr std::string_view kFurther[] = {kIndentation, "its message: ", "without a message"};

template <class Beginnings>
bool startsWithAny(std::string_view line, const Beginnings& beginnings) {
    return std::any_of(std::begin(beginnings), std::end(beginnings),
                       [&](std::string_view beginning) { return startsWith(line, beginning); });
}

// Returns `line` without the number after `word`.
std::string withoutNumber(std::string line, std::string_view word) {
    const std::size_t begin = line.find(word);
    if (begin == std::string::npos) return line;
    return line.erase(begin, line.find_first_not_of(kDigits, begin + word.size()) - begin);
}

// Returns a headline without the place at its start: `FILE:LINE: `.
std::string withoutPlace(const std::string& line) {
    for (std::size_t colon = line.find(':'); colon != std::string::npos; colon = line.find(':', colon + 1)) {
        const std::size_t end = std::min(line.find_first_not_of(kDigits, colon + 1), line.size());
        if (end > colon + 1 && line.compare(end, 2, ": ") == 0) return line.substr(end + 2);
    }
    return line;
}

// Returns a description of work without the place at its end: ` (FILE:LINE)`.
std::string withoutLastPlace(const std::string& line) {
    const std::size_t begin = line.rfind(" (");
    const std::size_t colon = line.rfind(':');
    const bool hasPlace = begin != std::string::npos && colon > begin && colon + 2 < line.size() &&
                          line.back() == ')' && line.find_first_not_of(kDigits, colon + 1) == line.size() - 1;
    return hasPlace ? line.substr(0, begin) : line;
}

// Returns the part of a line that is the same in each test with the same cause. The place of a command follows its
// closing quotation mark.
std::string essence(const std::string& line) {
    if (startsWith(line, "    and ")) return "";
    if (!startsWith(line, kIndentation)) return withoutPlace(line);
    const std::size_t quote = line.rfind('"');
    const std::string essential = quote == std::string::npos ? line : line.substr(0, quote + 1);
    return withoutNumber(withoutNumber(essential, "call "), "thread ");
}

// Returns the key of a process that ended: the way in which it ended, and the work at that time.
std::string howItEnded(const std::vector<std::string>& lines) {
    std::string how = lines.empty() ? "" : lines.front();
    for (const std::string& line : lines) {
        if (startsWith(line, "during: ") || startsWith(line, "after: ")) how += ", " + withoutLastPlace(line);
    }
    return how;
}

// Lines of a reason: a cause, or its context.
struct Part {
    std::string text;
    std::string key = {};       // the key of its cause; empty for context
    std::string headline = {};  // the first line of a cause
};

std::vector<Part> partsOf(const Verdict& verdict) {
    const std::vector<std::string> lines = linesOf(verdict.reason);
    const bool isEnd = verdict.outcome == Outcome_e::Crashed || verdict.outcome == Outcome_e::TimedOut;
    if (isEnd) return {{verdict.reason, howItEnded(lines), howItEnded(lines)}};
    std::vector<Part> parts;
    for (const std::string& line : lines) {
        const bool isFurther = !parts.empty() && startsWithAny(line, kFurther);
        if (!isFurther) parts.push_back({"", "", line});
        Part& part = parts.back();
        const bool isCause = isFurther ? !part.key.empty() : !startsWithAny(line, kContext);
        addLine(part.text, line);
        if (isCause) part.key += essence(line) + '\n';
    }
    return parts;
}

}  // namespace

ToldCauses::Told ToldCauses::tell(const std::string& test, const Verdict& verdict) {
    if (verdict.outcome == Outcome_e::Passed || verdict.outcome == Outcome_e::Skipped) return {verdict.reason, false};
    Told told;
    std::string context;
    std::set<std::string> here;     // the causes of this test
    std::set<std::string> earlier;  // the tests that already printed some of these causes
    for (const Part& part : partsOf(verdict)) {
        if (part.key.empty()) {
            addLine(context, part.text);
            continue;
        }
        if (!here.insert(part.key).second) continue;
        const auto known =
            std::find_if(m_causes.begin(), m_causes.end(), [&](const Cause& cause) { return cause.key == part.key; });
        if (known != m_causes.end()) {
            ++known->tests;
            earlier.insert(known->firstTest);
            continue;
        }
        m_causes.push_back({part.key, part.headline, test, 1});
        addLine(told.text, part.text);
        told.isNew = true;
    }
    if (told.isNew || here.empty()) addLine(told.text, context);
    std::string names;
    for (const std::string& name : earlier) names += (names.empty() ? "" : ", ") + name;
    if (!names.empty()) addLine(told.text, (told.isNew ? "and as above (" : "as above (") + names + ')');
    told.isNew = told.isNew || here.empty();
    return told;
}

std::string ToldCauses::summary() const {
    std::string lines;
    for (const Cause& cause : m_causes) {
        if (cause.tests < 2) continue;
        addLine(lines, std::to_string(cause.tests) + " tests have the same cause, first seen in " + cause.firstTest +
                           ": " + shortText(cause.headline));
    }
    return lines;
}

}  // namespace vexa::runner
