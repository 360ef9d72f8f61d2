#pragma once

#include <string>

#include "vexa/Export.h"

namespace vexa::ui {

/// Shows the progress of a long task.
///
/// Call start() first, then any other operations, then finish().
/// The order of the virtual operations is part of the binary interface.
class VEXAHOSTLIBS_API ProgressBarInterface {
public:
    /// Shows the bar, with \p message beside it.
    virtual void start(const std::string& message) = 0;
    /// Removes the bar.
    virtual void finish() = 0;
    /// Replaces the message beside the bar.
    virtual void setStatusMessage(const std::string& message) = 0;
    /// Moves the bar to \p percent, from 0 to 100.
    virtual void setPercentDone(int percent) = 0;
    /// Returns true if the user has asked to stop the task.
    virtual bool isInterrupted() const = 0;
    virtual ~ProgressBarInterface();

protected:
    ProgressBarInterface() = default;
    ProgressBarInterface(const ProgressBarInterface&) = default;
    ProgressBarInterface& operator=(const ProgressBarInterface&) = default;
};

}  // namespace vexa::ui
