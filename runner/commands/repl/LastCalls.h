#pragma once

#include <cstddef>
#include <mutex>
#include <string>

#include "trace/TraceLines.h"
#include "vexastandin/Observer.h"

namespace vexa::runner {

/// An observer that keeps the trace of the last command, as TextTrace writes it. It keeps the first lines of a long
/// trace, and counts the others.
///
/// Threads: as an observer.
class LastCalls : public standin::ObserverInterface {
public:
    static constexpr std::size_t kMostLines = 500;

    void entryBegan(const standin::EntryEvent& entry) override;
    void entryEnded(const standin::EntryEvent& entry) override;
    void callBegan(const standin::CallEvent& call) override;
    void callEnded(const standin::CallEvent& call) override;
    void findingMade(const standin::Finding& finding) override;
    void statusChanged(const standin::StatusLine&) override {}

    /// Returns the lines of the last command; empty before the first one.
    std::string text() const;

private:
    void add(const std::string& lines);

    mutable std::mutex m_guard;
    TraceLines m_lines;
    bool m_isInCommand = false;
    std::string m_text;
    std::size_t m_kept = 0;     // lines in the text
    std::size_t m_leftOut = 0;  // lines that are not
};

}  // namespace vexa::runner
