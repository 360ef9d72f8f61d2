#pragma once

#include <unistd.h>

#include <functional>
#include <string>
#include <utility>

#include "commands/test/Transcript.h"
#include "session/watch/Notes.h"
#include "system/files/MemoryFile.h"
#include "system/files/RedirectedOutput.h"

namespace vexa::runner {

/// Puts together the transcript that writeTranscript() tells.
class TranscriptText : public NotesInterface {
public:
    /// \param takePrinted returns what was printed since the last call
    explicit TranscriptText(std::function<KeptText()> takePrinted) : m_takePrinted(std::move(takePrinted)) {}

    void tell(char kind, std::string_view text) override { (kind == kExplainedNote ? m_explained : m_text) += text; }
    std::string ask(char, std::string_view text) override {
        const std::string lines = printedLines(m_takePrinted());
        if (!lines.empty()) m_text.append(text).append(lines);
        return lines.empty() ? "" : "y";
    }

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
    /// What was printed since the last call.
    KeptText take() const {
        KeptText printed{m_printed.text(), 0};
        m_printed.clear();
        return printed;
    }

private:
    MemoryFile m_printed;
    RedirectedOutput m_out{STDOUT_FILENO, m_printed.descriptor()};
    RedirectedOutput m_err{STDERR_FILENO, m_printed.descriptor()};
};

}  // namespace vexa::runner
