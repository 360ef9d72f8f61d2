#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "session/watch/Notes.h"
#include "system/files/WholeOutput.h"

namespace vexa::runner {

/// The recording and the journal of a run, which are kept as they come and each written as a whole when it is over, and
/// the results, which are handed on at once.
///
/// It is its own notes: what a run in this process tells goes here, and so does what a run in another one sends.
/// Threads: tell() and ask() are safe from any.
class RunOutputs : public NotesInterface {
public:
    /// \param results gets each line of the results.
    explicit RunOutputs(std::function<void(std::string_view)> results) : m_results(std::move(results)) {}

    /// Keeps the last line of the results back until tellEnd(), for a run that may still come to another end.
    void keepEndBack() { m_keepsEndBack = true; }
    void tellEnd() { m_results(m_end); }

    /// Makes sure that the files asked for can be written.
    /// \throws OutputError
    void open(const std::optional<std::string>& recordFile, const std::optional<std::string>& journalFile);

    void tell(char kind, std::string_view text) override;
    std::string ask(char kind, std::string_view text) override;

    /// Writes the recording and the journal of a run that ended before it had them written. They stay as they were when
    /// no command began.
    /// \return whether all was written; what is wrong was told.
    bool writeWhatIsLeft();

private:
    /// A file, and what it is to hold.
    struct Output {
        Output(const std::string& path, std::string head, const char* itsHow)
            : file(path), text(std::move(head)), how(itsHow) {}
        WholeOutput file;
        std::string text;  // its head, and what came
        const char* how;   // what is done with what comes
        std::size_t count = 0;
    };

    bool write(std::string& summary);
    static void add(std::optional<Output>& output, std::string_view lines);

    std::mutex m_guard;
    std::function<void(std::string_view)> m_results;
    bool m_keepsEndBack = false;
    std::string m_end;
    std::optional<Output> m_record;
    std::optional<Output> m_journal;
    bool m_isLeft = false;  // commands began, and what they recorded is still to be written
};

}  // namespace vexa::runner
