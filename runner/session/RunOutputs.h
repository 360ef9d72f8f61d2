#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "coverage/Coverage.h"
#include "formats/Problem.h"
#include "session/watch/Notes.h"
#include "system/files/WholeOutput.h"

namespace vexa::runner {

/// \name Messages of a run to the process that keeps its outputs
/// @{
inline constexpr char kRecordedNote = 'r';   ///< the lines of a recorded command
inline constexpr char kJournaledNote = 'j';  ///< the lines of a journal entry
inline constexpr char kResultNote = 'o';     ///< a line of the results
inline constexpr char kEndNote = 'e';        ///< the last line of the results
inline constexpr char kBeganNote = 'b';      ///< the first command starts
inline constexpr char kWriteNote = 'w';      ///< asks to write the outputs; answer: kWritten and a summary, or empty
/// @}

inline constexpr char kWritten = 'y';

/// The outputs of a run. It keeps the recording and the journal until the run is over, and then writes each file as a
/// whole. It passes each line of the results on at once.
///
/// The run may be in this process or in another one; both send notes.
/// Threads: any thread may call tell() and ask().
class RunOutputs : public NotesInterface {
public:
    /// \param results gets each line of the results.
    explicit RunOutputs(std::function<void(std::string_view)> results) : m_results(std::move(results)) {}

    /// Holds back the last line of the results until tellEnd(), because the process may still end in another way.
    void keepEndBack() { m_keepsEndBack = true; }
    void tellEnd() { m_results(m_end); }

    /// Returns the problems of the run so far.
    const std::vector<Problem>& problems() const { return m_problems; }

    /// Checks that the requested files can be written.
    /// \throws OutputError
    void open(const std::optional<std::string>& recordFile, const std::optional<std::string>& journalFile);

    void tell(char kind, std::string_view text) override;
    std::string ask(char kind, std::string_view text) override;

    /// Returns the coverage that the run has reported so far. Call it when the run is over.
    const Coverage& coverage() const { return m_coverage; }

    /// Writes the recording and the journal of a run that ended before it sent kWriteNote. If no command started, the
    /// files stay unchanged.
    /// \return false if a file could not be written. The function has then printed the error.
    bool writeWhatIsLeft();

private:
    /// A file, and the text for it.
    struct Output {
        WholeOutput file;
        std::string text;  // the head of the file, and the lines so far
        const char* how;   // "recorded" or "journaled"
        std::size_t count = 0;
    };

    bool write(std::string& summary);
    static void add(std::optional<Output>& output, std::string_view lines);

    std::mutex m_guard;
    std::function<void(std::string_view)> m_results;
    bool m_keepsEndBack = false;
    std::string m_end;
    Coverage m_coverage;
    std::vector<Problem> m_problems;
    std::optional<Output> m_record;
    std::optional<Output> m_journal;
    bool m_isLeft = false;  // commands have started, and their outputs are not written yet
};

}  // namespace vexa::runner
