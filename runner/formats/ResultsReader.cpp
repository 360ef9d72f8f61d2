#include "formats/ResultsReader.h"

#include <algorithm>
#include <system_error>

#include "formats/ResultsFile.h"
#include "text/Lines.h"
#include "text/ShortText.h"

namespace vexa::runner {
namespace {

constexpr long kMostFailures = 10;

// Removes the number of the line from a place.
std::string fileOf(const std::string& place) { return place.substr(0, place.rfind(':')); }

void addFailure(std::string& failures, const ResultLine& command) {
    const auto count = failures.empty() ? 0 : std::count(failures.begin(), failures.end(), '\n') + 1;
    if (count > kMostFailures) return;
    addLine(failures, count == kMostFailures ? "..." : shortText(joinedLines(command.name + ": " + command.error)));
}

void addCommand(MacroResult& result, const ResultLine& command) {
    result.macroFile = fileOf(command.name);
    ++result.commands;
    result.seconds += command.seconds;
    if (!command.isAccepted) addFailure(result.failures, command);
}

}  // namespace

std::optional<MacroResult> ResultsReader::next() {
    MacroResult result;
    for (std::string line; readLine(line);) {
        const std::optional<ResultLine> read = parseResultLine(line);
        if (!read && !m_lines.hasLineFeed() && isStartOfResultLine(line)) return result;
        if (!read) refuseLine();
        result.lines += line + '\n';
        if (read->exitStatus) {
            result.macroFile = read->name;
            result.exitStatus = read->exitStatus;
            result.error = read->error;
            return result;
        }
        addCommand(result, *read);
    }
    if (result.lines.empty()) return std::nullopt;
    return result;
}

bool ResultsReader::readLine(std::string& line) {
    ++m_number;
    try {
        std::string_view text;
        const bool isRead = m_lines.next(text);
        line = text;
        return isRead;
    } catch (const std::system_error& error) {
        throw ResultsError(m_name + ": cannot be read: " + error.code().message());
    }
}

void ResultsReader::refuseLine() const {
    throw ResultsError(m_name + ':' + std::to_string(m_number) + ": this is not a line of 'run --json'");
}

}  // namespace vexa::runner
