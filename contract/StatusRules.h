#pragma once

#include <cstddef>
#include <optional>

#include "contract/FindingLog.h"
#include "contract/Moment.h"

namespace vexa::standin {

/// Checks how one entry uses the status line.
class StatusRules {
public:
    void started(const Moment& now, FindingLog& findings);
    void percentShown(int percent, const Moment& now, FindingLog& findings);
    void textShown(const Moment& now, FindingLog& findings);
    void finished(const Moment& now, FindingLog& findings);
    void endOfEntry(const Moment& now, FindingLog& findings) const;

private:
    std::optional<Moment> m_start;        // the start of the current status line
    std::optional<Moment> m_finish;       // the finish of the previous status line
    std::size_t m_needlessStarts = 0;     // starts while the line was shown; each allows one more finish
    std::optional<Moment> m_lastPercent;  // the moment in which m_percent was shown first
    int m_percent = 0;
};

}  // namespace vexa::standin
