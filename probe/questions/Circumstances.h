#pragma once

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "vexa/VexaUtil.h"

namespace vexa::probe {

/// What the questions need to know about the time of asking.
struct Circumstances {
    const char* addOnId = "";                          ///< the id of the probe
    AddOnList_s* identity = nullptr;                   ///< what the host passed when it loaded the probe
    std::thread::id loadingThread;                     ///< the thread on which the host loaded the probe
    std::chrono::steady_clock::time_point loadedAt{};  ///< the time at which the host loaded the probe
    std::string command;                               ///< the text of the running command, as the host passed it
    std::vector<std::string> setting;  ///< the keywords of a double among the host's settings; may be empty
};

}  // namespace vexa::probe
