#pragma once

#include <mutex>
#include <string>

#include "vexastandin/Host.h"

namespace vexa::runner {

/// The status line where it cannot be drawn, as a log: a message at the start, every ten percent, and at the end.
///
/// Threads: safe from any.
class PlainStatus {
public:
    /// Tells of the status line as it is now.
    /// \param place      what the messages begin with
    /// \param isStopping whether the user has asked to stop
    void show(const std::string& place, const standin::StatusLine& line, bool isStopping);

private:
    std::mutex m_guard;
    bool m_isUp = false;
    int m_told = 0;  // percent
};

}  // namespace vexa::runner
