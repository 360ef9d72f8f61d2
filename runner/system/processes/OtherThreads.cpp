#include "system/processes/OtherThreads.h"

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

namespace vexa::runner {
namespace {

constexpr unsigned kIsEnding = 4;  // PF_EXITING in proc(5)

// The system still lists a joined thread for a moment.
bool isEnding(const std::filesystem::path& task) {
    std::ifstream file(task / "stat");
    std::string line;
    std::getline(file, line);
    const std::size_t endOfName = line.rfind(')');  // the name may have blanks and parentheses
    if (endOfName == std::string::npos) return true;
    unsigned flags = 0;
    std::sscanf(line.c_str() + endOfName, ") %*c %*d %*d %*d %*d %*d %u", &flags);
    return (flags & kIsEnding) != 0;
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

}  // namespace vexa::runner
