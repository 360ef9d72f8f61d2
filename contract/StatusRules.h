#pragma once

#include <cstddef>
#include <optional>

#include "contract/FindingLog.h"
#include "contract/Moment.h"

namespace vexa::standin {

/// What one entry does with the status line.
class StatusRules {
public:
    void started(const Moment& now, FindingLog& findings);
    void percentShown(int percent, const Moment& now, FindingLog& findings);
    void textShown(const Moment& now, FindingLog& findings);
    void finished(const Moment& now, FindingLog& findings);
    void endOfEntry(const Moment& now, FindingLog& findings) const;

private:
    std::optional<Moment> m_start;        // of the line that is up
    std::optional<Moment> m_finish;       // of the line before
    std::size_t m_needlessStarts = 0;     // whose finishes, if they come, are no further breach
    std::optional<Moment> m_lastPercent;  // when m_percent was shown
    int m_percent = 0;
};

}  // namespace vexa::standin
