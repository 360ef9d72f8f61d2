// How the host calls a command.

#include <sys/syscall.h>
#include <unistd.h>

#include "probe/questions/Questions.h"

namespace vexa::probe {
namespace {

bool contains(const char* characters, char c) { return std::string(characters).find(c) != std::string::npos; }

Answer isOnLoadingThread(const Circumstances& now) { return std::this_thread::get_id() == now.loadingThread; }

Answer isOnMainThread(const Circumstances&) { return syscall(SYS_gettid) == getpid(); }

Answer startsWithBlank(const Circumstances& now) {
    return !now.command.empty() && contains(" \t", now.command.front());
}

Answer endsWithLineBreak(const Circumstances& now) {
    return !now.command.empty() && contains("\r\n", now.command.back());
}

}  // namespace

std::vector<Question> commandQuestions() {
    using facts::Fact;
    return {{Fact::ThreadCommandIsLoading, isOnLoadingThread},
            {Fact::ThreadCommandIsMain, isOnMainThread},
            {Fact::CommandStartsWithBlank, startsWithBlank},
            {Fact::CommandEndsWithLineBreak, endsWithLineBreak}};
}

}  // namespace vexa::probe
