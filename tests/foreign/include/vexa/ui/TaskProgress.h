#pragma once

#include <memory>
#include <string>

#include "vexa/Export.h"
#include "vexa/ui/ProgressBarInterface.h"

namespace vexa::ui {

/// Passes its calls to the bar. The library may only construct it. The other operations are for add-ons, here the
/// tests.
class FOREIGN_API TaskProgress {
public:
    TaskProgress(std::shared_ptr<ProgressBarInterface> bar, long count);
    TaskProgress(const TaskProgress&) = delete;
    TaskProgress& operator=(const TaskProgress&) = delete;
    ~TaskProgress();

    void start(const std::string& message);
    void advance(long steps = 1);
    void setStatusMessage(const std::string& message);
    bool isInterrupted() const;
    void finish();

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

}  // namespace vexa::ui
