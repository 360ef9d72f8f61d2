#pragma once

#include <string>

#include "vexa/Export.h"

namespace vexa::ui {

/// Something that shows how far a long task has come.
///
/// The expected order is start(), any number of the operations between, finish().
/// The order of the virtual operations is part of the binary contract.
class VEXAHOSTLIBS_API ProgressBarInterface {
public:
    /// Shows the bar with \p message beside it.
    virtual void start(const std::string& message) = 0;
    /// Takes the bar down.
    virtual void finish() = 0;
    /// Replaces the message beside the bar.
    virtual void setStatusMessage(const std::string& message) = 0;
    /// Moves the bar to \p percent, from 0 to 100.
    virtual void setPercentDone(int percent) = 0;
    /// Whether the user has asked to stop the task.
    virtual bool isInterrupted() const = 0;
    virtual ~ProgressBarInterface();

protected:
    ProgressBarInterface() = default;
    ProgressBarInterface(const ProgressBarInterface&) = default;
    ProgressBarInterface& operator=(const ProgressBarInterface&) = default;
};

}  // namespace vexa::ui
