#pragma once

#include <memory>

#include "vexa/ui/TaskProgress.h"
#include "vexautilutil/Export.h"

namespace vexa::vexautilutil {

/// Makes the progress of a long task that shows on the host's status line, with a stop button.
///
///     const auto progress = createTaskProgressBar(rows);
///     progress->start("Reading rows");
///     for (long row = 0; row < rows; ++row) {
///         if (progress->isInterrupted()) return false;   // the user pressed stop
///         read(row);
///         progress->advance();
///     }
///
/// In batch mode it makes no host call at all and is never interrupted. Batch mode is asked for once, here.
/// Otherwise each call of isInterrupted() asks the host, with the percentage last shown. finish() shows 100 percent
/// before it takes the status line down. Where start() and setStatusMessage() run out of memory they end quietly.
///
/// \warning The percentage last shown survives finish() and start(): a second task driven by the same object does not
///          send a percentage that equals it. Make one object a task.
/// \param count the number of steps of the task; anything below 1 counts as 1.
/// \return the progress, owned by the caller.
/// \throws std::bad_alloc when memory runs out.
/// Threads: use it on the thread from which the host lets add-ons report status.
VEXAUTILUTIL_API std::unique_ptr<vexa::ui::TaskProgress> createTaskProgressBar(long count);

/// Makes a progress that shows nowhere, calls nobody and is never interrupted. For code that wants a progress where
/// there is none to show. Its task has 99 steps.
/// \return the progress, owned by the caller.
/// \throws std::bad_alloc when memory runs out.
VEXAUTILUTIL_API std::unique_ptr<vexa::ui::TaskProgress> createNoopTaskProgressBar();

}  // namespace vexa::vexautilutil
