#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <queue>
#include <string>
#include <utility>
#include <vector>

#include "commands/report/BoundedText.h"
#include "trace/TracedRun.h"

namespace vexa::runner {

/// Counts the entries of a run, and chooses those that the page lists: the first ones, those that failed, and the
/// slowest ones.
class KeptEntries {
public:
    /// The entries of one name.
    struct Totals {
        std::size_t runs = 0;
        std::size_t failed = 0;
        std::size_t calls = 0;
        std::int64_t time = 0;
    };

    KeptEntries();

    /// \return true if the entry is in the list, so that its span is needed.
    bool ended(const TracedSpan& span, const TracedEntry& entry);

    std::size_t count() const { return m_count; }
    std::size_t commands() const { return m_commands; }
    std::size_t failedCommands() const { return m_failedCommands; }
    /// Returns the list, in the order of the starts, with short texts. Entries with the same name have one total; the
    /// names beyond a limit are "others".
    const std::map<std::size_t, TracedEntry>& list() const { return m_list; }
    const std::map<std::string, Totals>& totals() const { return m_totals; }
    /// The innermost entry that did not end.
    const std::optional<TracedEntry>& unfinished() const { return m_unfinished; }

private:
    bool isWanted(std::int64_t duration, bool failed);
    void count(const TracedSpan& span, const TracedEntry& entry, bool failed);

    TextBudget m_texts;
    std::size_t m_count = 0;
    std::size_t m_commands = 0;
    std::size_t m_failedCommands = 0;
    std::size_t m_failed = 0;
    std::map<std::size_t, TracedEntry> m_list;
    std::map<std::string, Totals> m_totals;
    std::priority_queue<std::int64_t, std::vector<std::int64_t>, std::greater<>> m_longest;
    std::optional<TracedEntry> m_unfinished;
};

}  // namespace vexa::runner
