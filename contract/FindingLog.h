#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "contract/Moment.h"
#include "vexastandin/Finding.h"

namespace vexa::standin {

/// The findings made.
class FindingLog {
public:
    /// Adds a finding, unless its rule is suppressed. Of one rule and add-on the first ten are kept.
    void add(Finding finding);
    /// Adds a finding about what is seen at \p seen, and whose other place, if any, is \p opened.
    void add(const char* rule, std::string message, const Moment& seen, const Moment* opened = nullptr,
             std::size_t count = 1);
    /// Gives an add-on that was known by \p before its id. Its findings count together with those that the id has.
    void rename(const std::string& before, const std::string& addOnId);

    void suppress(const Rule& rule);
    std::vector<std::string> unusedSuppressions() const;

    const std::vector<Finding>& kept() const { return m_kept; }
    /// The findings since this was asked last, kept or not.
    std::vector<Finding> takeNew() { return std::exchange(m_new, {}); }

private:
    struct Tally {
        std::size_t kept = 0;
        std::size_t last = 0;  // where the last one kept is
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
