// The states of the host, and what it records.

#include <cstddef>

#include "probe/questions/Questions.h"

namespace vexa::probe {
namespace {

// The probe has a command NOTE, so that a user can play back what it recorded.
std::string note(const std::string& text) { return "NOTE TEXT = '" + text + '\''; }

constexpr std::size_t kLongCommand = 10000;

Answer isInBatchMode(const Circumstances&) { return VexaUtilMacroIsBatchModeActive() != 0; }

Answer isRecording(const Circumstances&) { return VexaUtilMacroIsRecordingActive() != 0; }

Answer isProcessingJournal(const Circumstances&) { return VexaUtilStateIsProcessingJournal() != 0; }

Answer isProcessingLayout(const Circumstances&) { return VexaUtilStateIsProcessingLayout() != 0; }

void require(bool recording) {
    if ((VexaUtilMacroIsRecordingActive() != 0) == recording) return;
    throw Unanswerable(recording ? "asked only while the host records" : "asked only while the host does not record");
}

// What the host answers while it records.
bool records(const char* addOnId, const std::string& command) {
    require(true);
    return VexaUtilMacroRecordExtCommand(addOnId, command.c_str()) != 0;
}

Answer recordsLine(const Circumstances& now) { return records(now.addOnId, note("recorded")); }

Answer recordsWhileNotRecording(const Circumstances& now) {
    require(false);
    return VexaUtilMacroRecordExtCommand(now.addOnId, note("not recorded").c_str()) != 0;
}

Answer recordsLongText(const Circumstances& now) {
    return records(now.addOnId, note(std::string(kLongCommand - note("").size(), 'x')));
}

Answer recordsNonAscii(const Circumstances& now) { return records(now.addOnId, note("\xC3\xA4\xE2\x82\xAC")); }

Answer recordsEmptyText(const Circumstances& now) { return records(now.addOnId, ""); }

Answer recordsLineBreak(const Circumstances& now) { return records(now.addOnId, note("two\nlines")); }

Answer recordsLeadingBlank(const Circumstances& now) { return records(now.addOnId, ' ' + note("blank")); }

Answer recordsUnknownAddOn(const Circumstances&) { return records("VEXAPROBENOADDON", note("unknown")); }

bool journals(const Circumstances& now, const std::string& command, const char* data) {
    return VexaUtilDataSetAddJournalCommand(now.addOnId, command.c_str(), data) != 0;
}

Answer journalsLine(const Circumstances& now) { return journals(now, note("journaled"), "data"); }

Answer journalsWithoutData(const Circumstances& now) { return journals(now, note("journaled"), nullptr); }

Answer journalsEmptyText(const Circumstances& now) { return journals(now, "", "data"); }

}  // namespace

std::vector<Question> recordingQuestions() {
    using facts::Fact;
    return {{Fact::StateBatch, isInBatchMode},
            {Fact::StateRecording, isRecording},
            {Fact::StateJournal, isProcessingJournal},
            {Fact::StateLayout, isProcessingLayout},
            {Fact::RecordWhileRecording, recordsLine},
            {Fact::RecordWhileNotRecording, recordsWhileNotRecording},
            {Fact::RecordLongText, recordsLongText},
            {Fact::RecordNonAscii, recordsNonAscii},
            {Fact::RecordEmptyText, recordsEmptyText},
            {Fact::RecordLineBreak, recordsLineBreak},
            {Fact::RecordLeadingBlank, recordsLeadingBlank},
            {Fact::RecordUnknownAddOn, recordsUnknownAddOn},
            {Fact::JournalAdd, journalsLine},
            {Fact::JournalAddWithoutData, journalsWithoutData},
            {Fact::JournalEmptyText, journalsEmptyText}};
}

}  // namespace vexa::probe
