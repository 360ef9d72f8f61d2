#include "LongTask.h"

#include "Errors.h"
#include "vexautilutil/TaskProgressBar.h"

namespace dataloader {

LongTask::LongTask(const char* command, const std::string& text, uint64_t steps)
    : m_command(command), m_progress(vexa::vexautilutil::createTaskProgressBar(static_cast<long>(steps))) {
    m_progress->start(text);
    check();
}

void LongTask::check() {
    m_progress->advance(static_cast<long>(m_done - m_shown));
    m_shown = m_done;
    if (m_progress->isInterrupted()) throw LoaderError(std::string(m_command) + " was stopped by the user");
}

}  // namespace dataloader
