#include "answers/RecordingAnswers.h"

#include <algorithm>
#include <cstddef>

#include "contract/MacroLine.h"

namespace vexa::standin {
namespace {

constexpr std::size_t kLongCommand = 10000;
constexpr std::string_view kAnyCommand = "X";

bool isEmpty(std::string_view command) { return command.find_first_not_of(" \t\n\v\f\r") == std::string_view::npos; }

bool isNonAscii(std::string_view command) {
    return std::any_of(command.begin(), command.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

// The fact about a text that the host could not read back.
std::optional<Fact> oddityOf(std::string_view command) {
    if (isEmpty(command)) return Fact::RecordEmptyText;
    if (std::any_of(command.begin(), command.end(), isLineBreak)) return Fact::RecordLineBreak;
    if (command.front() == ' ' || command.front() == '\t') return Fact::RecordLeadingBlank;
    return std::nullopt;
}

bool isRefused(const HostAnswers& answers, bool isLoaded, std::string_view command) {
    const std::pair<Fact, bool> refusals[] = {{Fact::RecordWhileRecording, true},
                                              {Fact::RecordUnknownAddOn, !isLoaded},
                                              {Fact::RecordLongText, command.size() >= kLongCommand},
                                              {Fact::RecordNonAscii, isNonAscii(command)}};
    return std::any_of(std::begin(refusals), std::end(refusals),
                       [&](const auto& refusal) { return refusal.second && !answers.truth(refusal.first); });
}

bool isName(const char* addOnId) { return addOnId != nullptr && whyNoMacroLine(addOnId, kAnyCommand).empty(); }

}  // namespace

RecordingAnswer answerToRecording(const HostAnswers& answers, bool isRecording, bool isLoaded, const char* addOnId,
                                  const char* command) {
    if (!isName(addOnId) || command == nullptr) return {false, false};
    if (!isRecording) return {answers.truth(Fact::RecordWhileNotRecording), false};
    if (const std::optional<Fact> oddity = oddityOf(command)) return {answers.truth(*oddity), false};
    const bool isTaken = !isRefused(answers, isLoaded, command);
    return {isTaken, isTaken};
}

RecordingAnswer answerToJournaling(const HostAnswers& answers, const char* addOnId, const char* command,
                                   const char* journalData) {
    if (!isName(addOnId) || command == nullptr) return {false, false};
    if (isEmpty(command)) return {answers.truth(Fact::JournalEmptyText), false};
    const Fact fact = journalData == nullptr ? Fact::JournalAddWithoutData : Fact::JournalAdd;
    const bool isTaken = whyNoMacroLine(addOnId, command).empty() && answers.truth(fact);
    return {isTaken, isTaken};
}

}  // namespace vexa::standin
