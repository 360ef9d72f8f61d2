#pragma once

#include <memory>
#include <utility>

#include "contract/FindingLog.h"
#include "contract/Moment.h"

namespace vexa::standin {

/// Which thread may call the host: the one that entered the add-on, and between two entries the one that entered last.
class ThreadRules {
public:
    void entered(std::shared_ptr<const Entry> entry) { m_last = std::move(entry); }
    /// The entry begun last; null before the first.
    const std::shared_ptr<const Entry>& last() const { return m_last; }

    static void callBegan(const Moment& now, FindingLog& findings);

private:
    std::shared_ptr<const Entry> m_last;
};

}  // namespace vexa::standin
