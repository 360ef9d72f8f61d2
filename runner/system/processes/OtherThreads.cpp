#include "system/processes/OtherThreads.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <system_error>

namespace vexa::runner {
namespace {

constexpr int kFieldsBeforeFlags = 6;  // after the name: see proc(5)
constexpr unsigned kIsEnding = 4;      // PF_EXITING

// The system still lists a joined thread for a moment.
bool isEnding(const std::filesystem::path& task) {
    std::ifstream file(task / "stat");
    std::string line;
    std::getline(file, line);
    std::istringstream fields(line.substr(line.rfind(')') + 1));  // the name may have blanks and parentheses
    std::string skipped;
    for (int i = 0; i != kFieldsBeforeFlags; ++i) fields >> skipped;
    unsigned flags = 0;
    return !(fields >> flags) || (flags & kIsEnding) != 0;
}

}  // namespace

bool hasOtherThreads() {
    const std::string own = std::to_string(gettid());
    std::error_code error;
    std::filesystem::directory_iterator task("/proc/self/task", error);
    for (; task != std::filesystem::directory_iterator(); task.increment(error)) {
        if (task->path().filename() != own && !isEnding(task->path())) return true;
    }
    return false;
}

bool isFirstThreadStopped() {
    std::ifstream file("/proc/self/stat");
    std::string line;
    std::getline(file, line);
    constexpr char kTraced = 't';
    const std::size_t nameEnd = line.rfind(')');
    return nameEnd != std::string::npos && nameEnd + 2 < line.size() && line[nameEnd + 2] == kTraced;
}

}  // namespace vexa::runner
