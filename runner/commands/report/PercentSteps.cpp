#include "commands/report/PercentSteps.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kMostSteps = 4000;

}  // namespace

void PercentSteps::add(std::int64_t time, std::int64_t percent) {
    m_steps.emplace_back(time, percent);
    while (m_steps.size() > kMostSteps) thin();
}

void PercentSteps::thin() {
    m_interval *= 2;
    std::vector<Step> left;
    for (const Step& step : m_steps) {
        if (!left.empty() && left.back().first / m_interval == step.first / m_interval) {
            left.back() = step;
        } else {
            left.push_back(step);
        }
    }
    m_steps = std::move(left);
}

}  // namespace vexa::runner
