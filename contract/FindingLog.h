#pragma once

#include <cstddef>
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
    /// Adds a finding, unless its rule is suppressed. It keeps the first ten for each rule and add-on.
    void add(Finding finding);
    /// Adds a finding that came to light at \p seen. \p opened is where its cause began, null if it has no such place.
    void add(const char* rule, std::string message, const Moment& seen, const Moment* opened = nullptr,
             std::size_t count = 1);
    /// Gives the findings of the add-on \p before to \p addOnId, which is its id. They count together with those that
    /// the id already has.
    void rename(const std::string& before, const std::string& addOnId);

    void suppress(const Rule& rule);
    std::vector<std::string> unusedSuppressions() const;

    const std::vector<Finding>& kept() const { return m_kept; }
    /// The findings since the last call of this, including those that are not kept.
    std::vector<Finding> takeNew() { return std::exchange(m_new, {}); }

private:
    struct Tally {
        std::size_t kept = 0;
        std::size_t last = 0;  // index of the last one kept
    };
    struct Suppression {
        std::string rule;
        bool isUsed = false;
    };

    void keep(Finding finding);
    bool isSuppressed(const std::string& rule);

    std::vector<Finding> m_kept;
    std::map<std::pair<std::string, std::string>, Tally> m_tallies;  // by rule and add-on
    std::vector<Suppression> m_suppressions;
    std::vector<Finding> m_new;
};

}  // namespace vexa::standin
