#pragma once

#include "answers/HostAnswers.h"

namespace vexa::standin {

/// What the host does with a command that it is to record.
struct RecordingAnswer {
    bool isAccepted;  ///< the answer of the function
    bool isKept;      ///< whether the host keeps the command; never one that it could not read back
};

/// The answer to VexaUtilMacroRecordExtCommand(). \p isLoaded says whether an add-on \p addOnId is loaded.
RecordingAnswer answerToRecording(const HostAnswers& answers, bool isRecording, bool isLoaded, const char* addOnId,
                                  const char* command);

/// The answer to VexaUtilDataSetAddJournalCommand().
RecordingAnswer answerToJournaling(const HostAnswers& answers, const char* addOnId, const char* command,
                                   const char* journalData);

}  // namespace vexa::standin
