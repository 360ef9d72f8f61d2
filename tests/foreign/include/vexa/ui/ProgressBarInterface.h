#pragma once

#include <string>

#include "vexa/Export.h"

namespace vexa::ui {

/// A progress bar that cannot be copied.
class FOREIGN_API ProgressBarInterface {
public:
    ProgressBarInterface();
    ProgressBarInterface(const ProgressBarInterface&) = delete;
    ProgressBarInterface& operator=(const ProgressBarInterface&) = delete;

    virtual void start(const std::string& message) = 0;
    virtual void finish() = 0;
    virtual void setStatusMessage(const std::string& message) = 0;
    virtual void setPercentDone(int percent) = 0;
    virtual bool isInterrupted() const = 0;
    virtual ~ProgressBarInterface();
};

}  // namespace vexa::ui
