#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "contract/Moment.h"
#include "vexastandin/Finding.h"

namespace vexa::standin {

/// Keeps the findings.
class FindingLog {
public:
    /// From now on passes each finding to \p complete, which may add to it, before it keeps the finding.
    void setComplete(std::function<void(Finding&)> complete) { m_complete = std::move(complete); }
    /// Adds a finding, unless its rule is suppressed. It keeps the first ten for each rule and add-on.
    void add(Finding finding);
    /// Adds a finding that was detected at \p seen. The problem started at \p opened; null if there is no such place.
    void add(const char* rule, std::string message, const Moment& seen, const Moment* opened = nullptr,
             std::size_t count = 1);
    /// Moves the findings of the add-on \p before to its id \p addOnId. They count together with earlier findings of
    /// this id.
    void rename(const std::string& before, const std::string& addOnId);

    void suppress(const Rule& rule);
    std::vector<std::string> unusedSuppressions() const;

    const std::vector<Finding>& kept() const { return m_kept; }
    /// Returns the findings since the last call of this function, including those that are not kept.
    std::vector<Finding> takeNew() { return std::exchange(m_new, {}); }

private:
    struct Tally {
        std::size_t kept = 0;
        std::size_t last = 0;  // the index of the last kept finding
    };
    struct Suppression {
        std::string rule;
        bool isUsed = false;
    };

    void keep(Finding finding);
    bool isSuppressed(const std::string& rule);

    std::function<void(Finding&)> m_complete;  // may be empty
    std::vector<Finding> m_kept;
    std::map<std::pair<std::string, std::string>, Tally> m_tallies;  // one for each rule and add-on
    std::vector<Suppression> m_suppressions;
    std::vector<Finding> m_new;
};

}  // namespace vexa::standin
