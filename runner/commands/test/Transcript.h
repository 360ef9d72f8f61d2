#pragma once

#include <unistd.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "coverage/Coverage.h"
#include "formats/StyleFile.h"
#include "session/CoverageNotes.h"
#include "session/ProblemOutputs.h"
#include "session/Session.h"
#include "session/watch/Processes.h"
#include "system/files/MemoryFile.h"
#include "system/files/RedirectedOutput.h"

namespace vexa::runner {

/// The status of a process that writes a transcript.
enum class TranscriptEnd_e : int {
    Whole = 10,        ///< the notes hold the transcript
    Broken = 11,       ///< the notes hold the transcript; with --strict: the contract was broken
    NotRun = 12,       ///< the macro could not be run; the notes have the reason
    CommandHung = 13,  ///< the notes hold the transcript up to a command that did not return
    OutputLost = 14,   ///< the notes lack the printed text, because an add-on closed the standard output
};

/// \name Notes of a transcript
/// @{
inline constexpr char kTranscriptNote = 't';  ///< lines of it
/// Findings with their places and hints, each cause in full once. Not part of the transcript.
inline constexpr char kExplainedNote = 'x';
/// The host calls, as the text of CallLines. Not part of the transcript.
inline constexpr char kCallsNote = 'h';
/// What the commands cost, as the text of a budget. Not part of the transcript.
inline constexpr char kCostsNote = 'm';
/// Asks the receiver to add the line of the note, and then the text that was printed since the last such note. If
/// nothing was printed, the receiver adds nothing, and the answer is empty.
inline constexpr char kPrintedNote = 'p';
/// @}

/// The options of a transcript.
struct TranscriptOptions : SessionOptions {
    std::optional<std::string> coverage;    ///< if given, the notes also hold the coverage
    std::vector<std::string> debugOptions;  ///< see debugOptionsOf()
    bool tellsCalls = false;                ///< true if the notes also hold the host calls
    bool tellsCosts = false;                ///< true if the notes also hold the costs of the commands
};

/// Runs a macro in this process, and sends what its add-ons do to \p notes, line by line:
///
///     > STATS MEAN ZONES = '1-3'      a command of the macro
///       mean 5.9                      what was printed, on both outputs
///     \ no line end                   of what was printed last
///     \ 99 bytes more are left out    of what was printed
///     ! no such zone                  why the command failed
///     ! dialog: no such zone          a dialog
///     ! error: ... [unbalanced-lock]  a breach of the contract
///     + STATS MEAN ZONES = '1-3'      what was recorded
///     > (unloading)                   the results of unloading; absent if there are none
///
/// The receiver of the notes adds the printed text.
/// \param styles the style settings for the host; the style file of \p options is not read.
/// \param box    receives the current work of the add-ons.
TranscriptEnd_e writeTranscript(const std::string& macroFile, const TranscriptOptions& options,
                                const std::vector<StyleSetting>& styles, ProcessBox& box, NotesInterface& notes);

/// Returns the lines of a transcript for printed text.
std::string printedLines(const KeptText& printed);

/// Builds the transcript from the notes of writeTranscript().
class TranscriptText : public NotesInterface {
public:
    /// \param takePrinted returns the text printed since its last call
    explicit TranscriptText(std::function<KeptText()> takePrinted) : m_takePrinted(std::move(takePrinted)) {}

    void tell(char kind, std::string_view text) override {
        switch (kind) {
            case kCoverageNote: return addCoverageNote(m_coverage, text);
            case kProblemNote: m_problems.push_back(unpackedProblem(text)); return;
            case kExplainedNote: m_explained += text; return;
            case kCallsNote: m_calls += text; return;
            case kCostsNote: m_costs += text; return;
            default: m_text += text; return;
        }
    }
    std::string ask(char, std::string_view text) override {
        const std::string lines = printedLines(m_takePrinted());
        if (!lines.empty()) m_text.append(text).append(lines);
        return lines.empty() ? "" : "y";
    }

    const std::string& text() const { return m_text; }
    /// Returns the findings with their places and hints.
    const std::string& explained() const { return m_explained; }
    /// Returns the host calls; empty if the macro did not run to its end.
    const std::string& calls() const { return m_calls; }
    /// Returns what the commands cost, as the text of a budget; empty if the macro did not run to its end.
    const std::string& costs() const { return m_costs; }
    const Coverage& coverage() const { return m_coverage; }
    /// Returns the findings for build servers.
    const std::vector<Problem>& problems() const { return m_problems; }

private:
    std::function<KeptText()> m_takePrinted;
    std::string m_text;
    std::string m_explained;
    std::string m_calls;
    std::string m_costs;
    Coverage m_coverage;
    std::vector<Problem> m_problems;
};

/// Captures what this process prints on both outputs, as long as this object lives.
class CaughtOutput {
public:
    /// Returns the text printed since the last call.
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
