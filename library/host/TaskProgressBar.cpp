#include "vexautilutil/TaskProgressBar.h"

#include <cstdint>
#include <new>

#include "vexa/VexaUtil.h"
#include "vexa/ui/ProgressBarInterface.h"

namespace vexa::vexautilutil {
namespace {

constexpr VexaBoolean kTrue = 1;
constexpr VexaBoolean kFalse = 0;
constexpr int32_t kAllDone = 100;
constexpr long kNoopSteps = 99;

class NoopProgressBar : public ui::ProgressBarInterface {
public:
    void start(const std::string& /*message*/) override {}
    void finish() override {}
    void setStatusMessage(const std::string& /*message*/) override {}
    void setPercentDone(int /*percent*/) override {}
    bool isInterrupted() const override { return false; }
};

// Shows a task on the host's status line. It makes no host call that would change nothing.
class VexaUtilProgressBar : public ui::ProgressBarInterface {
public:
    void start(const std::string& message) override {
        if (m_isBatch) return;
        try {
            VexaUtilStatusStartPercentDone(message.c_str(), kTrue, kTrue);
            m_statusMessage = message;
        } catch (const std::bad_alloc&) {  // a missing text must not make the task fail
        }
    }

    void finish() override {
        if (m_isBatch) return;
        try {
            setPercentDone(kAllDone);
        } catch (...) {  // remove the status line even after an exception
            VexaUtilStatusFinishPercentDone();
            throw;
        }
        VexaUtilStatusFinishPercentDone();
    }

    void setStatusMessage(const std::string& message) override {
        if (m_isBatch || message == m_statusMessage) return;
        try {
            VexaUtilStatusSetPercentDoneText(message.c_str());
            m_statusMessage = message;
        } catch (const std::bad_alloc&) {  // as above
        }
    }

    void setPercentDone(int percent) override {
        if (m_isBatch || percent == m_lastPercent) return;
        VexaUtilStatusCheckPercentDone(percent);
        m_lastPercent = percent;
    }

    // Passes the last percentage shown, so that the call does not move the bar.
    bool isInterrupted() const override {
        return !m_isBatch && VexaUtilStatusCheckPercentDone(m_lastPercent) == kFalse;
    }

private:
    const bool m_isBatch = VexaUtilMacroIsBatchModeActive() == kTrue;
    int32_t m_lastPercent = 0;
    std::string m_statusMessage;
};

}  // namespace

std::unique_ptr<ui::TaskProgress> createTaskProgressBar(long count) {
    return std::make_unique<ui::TaskProgress>(std::make_shared<VexaUtilProgressBar>(), count);
}

std::unique_ptr<ui::TaskProgress> createNoopTaskProgressBar() {
    return std::make_unique<ui::TaskProgress>(std::make_shared<NoopProgressBar>(), kNoopSteps);
}

}  // namespace vexa::vexautilutil
