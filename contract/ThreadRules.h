#pragma once

#include <memory>
#include <utility>

#include "contract/FindingLog.h"
#include "contract/Moment.h"

namespace vexa::standin {

/// Checks that the host is called on the thread that entered the add-on. Between two entries, the thread of the last
/// entry may call it.
class ThreadRules {
public:
    void entered(std::shared_ptr<const Entry> entry) { m_last = std::move(entry); }
    /// Returns the last entry that started; null before the first.
    const std::shared_ptr<const Entry>& last() const { return m_last; }

    static void callBegan(const Moment& now, FindingLog& findings);

private:
    std::shared_ptr<const Entry> m_last;
};

}  // namespace vexa::standin
