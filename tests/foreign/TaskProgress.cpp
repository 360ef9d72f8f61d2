#include "vexa/ui/TaskProgress.h"

#include <utility>

namespace vexa::ui {

ProgressBarInterface::ProgressBarInterface() = default;

ProgressBarInterface::~ProgressBarInterface() = default;

struct TaskProgress::Impl {
    std::shared_ptr<ProgressBarInterface> bar;
    long count;
    long done = 0;
    bool isStarted = false;
};

TaskProgress::TaskProgress(std::shared_ptr<ProgressBarInterface> bar, long count)
    : m_impl(std::make_unique<Impl>(Impl{std::move(bar), count})) {}

TaskProgress::~TaskProgress() { finish(); }

void TaskProgress::start(const std::string& message) {
    m_impl->bar->start(message);
    m_impl->done = 0;
    m_impl->isStarted = true;
}

void TaskProgress::advance(long steps) {
    m_impl->done += steps;
    m_impl->bar->setPercentDone(static_cast<int>(m_impl->done * 100 / m_impl->count));
}

void TaskProgress::setStatusMessage(const std::string& message) { m_impl->bar->setStatusMessage(message); }

bool TaskProgress::isInterrupted() const { return m_impl->bar->isInterrupted(); }

void TaskProgress::finish() {
    if (!std::exchange(m_impl->isStarted, false)) return;
    m_impl->bar->finish();
}

}  // namespace vexa::ui
