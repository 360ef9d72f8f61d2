#include "system/processes/Strays.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

namespace vexa::runner {
namespace {

// The program name is in brackets and may contain brackets, so search for the last one.
pid_t parentOf(const std::string& process) {
    std::ifstream file("/proc/" + process + "/stat");
    std::string line;
    std::getline(file, line, '\0');
    const std::size_t nameEnd = line.rfind(')');
    if (nameEnd == std::string::npos || nameEnd + 4 > line.size()) return 0;
    return static_cast<pid_t>(std::strtol(line.c_str() + nameEnd + 4, nullptr, 10));  // ") S PARENT"
}

std::set<pid_t> childrenOfThisProcess() {
    std::set<pid_t> children;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", ignored)) {
        const std::string name = entry.path().filename();
        const bool isProcess = std::isdigit(static_cast<unsigned char>(name.front())) != 0;
        if (isProcess && parentOf(name) == getpid()) children.insert(std::stoi(name));
    }
    return children;
}

bool hasChild() {
    siginfo_t info{};
    return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

}  // namespace

Strays::Strays() {
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    if (hasChild()) m_others = childrenOfThisProcess();
}

void Strays::kill() const {
    bool hasFound = hasChild();
    while (hasFound) {
        hasFound = false;
        for (const pid_t process : childrenOfThisProcess()) {
            if (m_others.count(process) != 0) continue;
            ::kill(process, SIGKILL);
            while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) {}
            hasFound = true;  // the children of a killed process become children of this process
        }
    }
}

}  // namespace vexa::runner
