#pragma once

#include <memory>

#include "vexa/ui/TaskProgress.h"
#include "vexautilutil/Export.h"

namespace vexa::vexautilutil {

/// Creates an object that shows the progress of a long task on the host's status line, with a stop button.
///
///     const auto progress = createTaskProgressBar(rows);
///     progress->start("Reading rows");
///     for (long row = 0; row < rows; ++row) {
///         if (progress->isInterrupted()) return false;   // the user pressed stop
///         read(row);
///         progress->advance();
///     }
///
/// This function checks once whether the host is in batch mode. In batch mode the object calls no host function, and
/// isInterrupted() returns false. In any other mode each isInterrupted() calls the host with the last percentage shown,
/// and finish() shows 100 percent before it removes the status line. If start() or setStatusMessage() runs out of
/// memory, it returns without an error.
///
/// \warning Create one object per task. finish() and start() keep the last percentage shown, so a second task with the
///          same object does not show this percentage again.
/// \param count the number of steps of the task; a number below 1 counts as 1.
/// \return the object, owned by the caller.
/// \throws std::bad_alloc if memory runs out.
/// Threads: use the object on the thread on which the host called the add-on.
VEXAUTILUTIL_API std::unique_ptr<vexa::ui::TaskProgress> createTaskProgressBar(long count);

/// Creates an object that shows nothing, calls no host function and is never interrupted. Use it for code that needs a
/// TaskProgress when there is no progress to show. Its task has 99 steps.
/// \return the object, owned by the caller.
/// \throws std::bad_alloc if memory runs out.
VEXAUTILUTIL_API std::unique_ptr<vexa::ui::TaskProgress> createNoopTaskProgressBar();

}  // namespace vexa::vexautilutil
