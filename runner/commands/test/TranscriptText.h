#pragma once

#include <functional>
#include <string>

#include "commands/test/Transcript.h"
#include "session/watch/Notes.h"
#include "system/files/MemoryFile.h"

namespace vexa::runner {

/// Puts together the transcript that writeTranscript() tells.
class TranscriptText : public NotesInterface {
public:
    /// \param takePrinted returns what was printed since the last call
    explicit TranscriptText(std::function<KeptText()> takePrinted) : m_takePrinted(std::move(takePrinted)) {}

    void tell(char kind, std::string_view text) override;
    std::string ask(char kind, std::string_view text) override;

    const std::string& text() const { return m_text; }
    /// The breaches of the contract with their places and hints.
    const std::string& explained() const { return m_explained; }

private:
    std::function<KeptText()> m_takePrinted;
    std::string m_text;
    std::string m_explained;
};

/// Catches what this process prints, on both outputs, as long as it lives.
class CaughtOutput {
public:
    /// \throws std::system_error
    CaughtOutput();
    CaughtOutput(const CaughtOutput&) = delete;
    CaughtOutput& operator=(const CaughtOutput&) = delete;
    ~CaughtOutput();

    /// What was printed since the last call.
    KeptText take() const;

private:
    MemoryFile m_printed;
    int m_out;  // the real ones
    int m_err;
};

}  // namespace vexa::runner
