#include "formats/MacroText.h"

#include <string_view>

namespace vexa::runner {
namespace {

constexpr std::string_view kDataMark = "#   ";

// Starts a new comment at each line end and at each carriage return, which a line of a macro file may not have.
std::string asComments(std::string_view data) {
    std::string comments(kDataMark);
    for (std::size_t at = 0; at < data.size(); ++at) {
        const bool isLineEnd = data[at] == '\n' || (data[at] == '\r' && data.substr(at + 1, 1) != "\n");
        if (isLineEnd) {
            comments += '\n';
            comments += kDataMark;
        } else if (data[at] != '\r') {
            comments += data[at];
        }
    }
    return comments + '\n';
}

// The host records only commands that can be read back from such a line.
template <class Command>
std::string lineOf(const Command& command) {
    return command.addOnId + ' ' + command.command + '\n';
}

}  // namespace

std::string recordingLine(const standin::RecordedCommand& recorded) { return lineOf(recorded); }

std::string recordingText(const std::vector<standin::RecordedCommand>& commands) {
    std::string text = "# Macro commands as the add-ons recorded them. vexa-standin runs this file.\n";
    for (const standin::RecordedCommand& recorded : commands) text += recordingLine(recorded);
    return text;
}

std::string journalLines(const standin::JournalEntry& entry) {
    return lineOf(entry) + (entry.journalData ? asComments(*entry.journalData) : "");
}

std::string journalText(const std::vector<standin::JournalEntry>& entries) {
    std::string text = "# Data-set journal: commands, and the data that the add-ons keep with them.\n";
    for (const standin::JournalEntry& entry : entries) text += journalLines(entry);
    return text;
}

}  // namespace vexa::runner
