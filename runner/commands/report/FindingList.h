#pragma once

#include <cstddef>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "commands/report/BoundedText.h"
#include "trace/TracedRun.h"

namespace vexa::runner {

/// Counts the findings of a run, and keeps the first ones, and the first ones of each rule.
class FindingList {
public:
    FindingList();

    void add(const TracedFinding& finding);

    std::size_t errors() const { return m_errors; }
    std::size_t warnings() const { return m_warnings; }
    /// The findings of each rule. Rules beyond a limit are "others".
    const std::map<std::string, std::size_t>& counts() const { return m_counts; }
    nlohmann::ordered_json json() const;

private:
    TextBudget m_texts;
    std::size_t m_errors = 0;
    std::size_t m_warnings = 0;
    std::map<std::string, std::size_t> m_counts;
    std::vector<std::string> m_kept;  // as JSON
};

}  // namespace vexa::runner
