// Runs a program on a system that refuses some calls: `refusing-system NAME... -- PROGRAM ARGUMENT...`.

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

struct Call {
    const char* name;
    unsigned number;
    unsigned error;
};

constexpr Call kCalls[] = {
    {"landlock", SYS_landlock_create_ruleset, ENOSYS}, {"unshare", SYS_unshare, EPERM}, {"ptrace", SYS_ptrace, EPERM}};

void refuse(std::vector<sock_filter>& filter, const char* name) {
    for (const Call& call : kCalls) {
        if (std::strcmp(call.name, name) != 0) continue;
        filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call.number, 0, 1));
        filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | call.error));
    }
}

}  // namespace

int main(int, char** argv) {
    std::vector<sock_filter> filter = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    char** argument = argv + 1;
    for (; *argument != nullptr && std::strcmp(*argument, "--") != 0; ++argument) refuse(filter, *argument);
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog program = {static_cast<unsigned short>(filter.size()), filter.data()};
    const bool isReady = *argument != nullptr && prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
                         prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
    if (isReady) execv(argument[1], argument + 1);
    std::perror("refusing-system");
    return 99;
}
