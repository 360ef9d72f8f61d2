#pragma once

#include <string>

#include "commands/test/Transcript.h"
#include "session/watch/Notes.h"
#include "system/files/MemoryFile.h"

namespace vexa::runner {

/// A transcript as it is put together.
class TranscriptText {
public:
    /// Takes what writeTranscript() tells.
    /// \param printed what was printed since the last message that asks for it.
    /// \return the answer.
    std::string take(char kind, std::string_view text, const KeptText& printed);

    const std::string& text() const { return m_text; }
    /// The breaches of the contract with their places and hints.
    const std::string& explained() const { return m_explained; }

private:
    std::string m_text;
    std::string m_explained;
};

/// The transcript of a macro that runs in this process: what is printed is caught as long as this lives.
class OwnTranscript : public NotesInterface {
public:
    /// \throws std::system_error
    OwnTranscript();
    OwnTranscript(const OwnTranscript&) = delete;
    OwnTranscript& operator=(const OwnTranscript&) = delete;
    ~OwnTranscript() override;

    void tell(char kind, std::string_view text) override;
    std::string ask(char kind, std::string_view text) override;

    const TranscriptText& transcript() const { return m_transcript; }

private:
    MemoryFile m_printed;
    TranscriptText m_transcript;
    int m_out;  // the real ones
    int m_err;
};

}  // namespace vexa::runner
