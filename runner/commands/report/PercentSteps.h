#pragma once

#include <cstdint>
#include <utility>
#include <vector>

namespace vexa::runner {

/// The changes of the percentage on the status line. When there are too many, only the last one of an interval stays.
class PercentSteps {
public:
    using Step = std::pair<std::int64_t, std::int64_t>;  ///< time and percentage

    void add(std::int64_t time, std::int64_t percent);
    const std::vector<Step>& steps() const { return m_steps; }

private:
    void thin();

    std::int64_t m_interval = 1;
    std::vector<Step> m_steps;
};

}  // namespace vexa::runner
