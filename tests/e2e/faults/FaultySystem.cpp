#include "FaultySystem.h"

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <system_error>
#include <vector>

#include "ProgramFiles.h"

namespace vexa::e2e {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

struct SystemCall {
    unsigned number;
    Call_e call;
};

constexpr SystemCall kSystemCalls[] = {
    {SYS_read, Call_e::Read},     {SYS_pread64, Call_e::Read},    {SYS_readv, Call_e::Read},
    {SYS_write, Call_e::Write},   {SYS_pwrite64, Call_e::Write},  {SYS_writev, Call_e::Write},
    {SYS_open, Call_e::Open},     {SYS_openat, Call_e::Open},     {SYS_creat, Call_e::Open},
    {SYS_close, Call_e::Close},   {SYS_fork, Call_e::Start},      {SYS_vfork, Call_e::Start},
    {SYS_clone, Call_e::Start},   {SYS_clone3, Call_e::Start},    {SYS_mmap, Call_e::Map},
    {SYS_rename, Call_e::Rename}, {SYS_renameat, Call_e::Rename}, {SYS_renameat2, Call_e::Rename},
    {SYS_link, Call_e::Rename},   {SYS_linkat, Call_e::Rename},
};

struct Kind {
    const char* name;
    Call_e call;
    int error;
};

constexpr Kind kKinds[] = {
    {"read of", Call_e::Read, EIO},        {"write to", Call_e::Write, ENOSPC},   {"open of", Call_e::Open, EMFILE},
    {"close of", Call_e::Close, EIO},      {"start of a", Call_e::Start, EAGAIN}, {"mmap of", Call_e::Map, ENOMEM},
    {"rename to", Call_e::Rename, EACCES},
};

const Kind& kindOf(Call_e call) {
    for (const Kind& kind : kKinds) {
        if (kind.call == call) return kind;
    }
    throw std::logic_error("a call without a kind");
}

// ---- In the process that becomes the program

// Reports the calls of the table, and fcntl(0, F_GETFD), with which the runner starts.
std::vector<sock_filter> reportingFilter() {
    constexpr unsigned kReport = SECCOMP_RET_USER_NOTIF;
    const auto argument = [](std::size_t i) {
        return static_cast<unsigned>(offsetof(seccomp_data, args) + i * sizeof(std::uint64_t));
    };
    std::vector<sock_filter> filter = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (const SystemCall& call : kSystemCalls) {
        filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call.number, 0, 1));
        filter.push_back(BPF_STMT(BPF_RET | BPF_K, kReport));
    }
    filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_fcntl, 0, 5));
    filter.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, argument(0)));
    filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, STDIN_FILENO, 0, 3));
    filter.push_back(BPF_STMT(BPF_LD | BPF_W | BPF_ABS, argument(1)));
    filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, F_GETFD, 0, 1));
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, kReport));
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    return filter;
}

// A message with one descriptor.
struct DescriptorMessage {
    DescriptorMessage() {
        head.msg_iov = &part;
        head.msg_iovlen = 1;
        head.msg_control = control.data();
        head.msg_controllen = control.size();
    }
    char byte = 0;
    iovec part = {&byte, 1};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
    msghdr head{};
};

bool sendDescriptor(int socket, int descriptor) {
    DescriptorMessage message;
    cmsghdr* const item = CMSG_FIRSTHDR(&message.head);
    item->cmsg_level = SOL_SOCKET;
    item->cmsg_type = SCM_RIGHTS;
    item->cmsg_len = CMSG_LEN(sizeof(int));
    std::memcpy(CMSG_DATA(item), &descriptor, sizeof descriptor);
    return sendmsg(socket, &message.head, 0) == 1;
}

int receiveDescriptor(int socket) {
    DescriptorMessage message;
    if (recvmsg(socket, &message.head, MSG_CMSG_CLOEXEC) != 1) return -1;
    const cmsghdr* const item = CMSG_FIRSTHDR(&message.head);
    if (item == nullptr || item->cmsg_type != SCM_RIGHTS) return -1;
    int descriptor = -1;
    std::memcpy(&descriptor, CMSG_DATA(item), sizeof descriptor);
    return descriptor;
}

// After the filter, only calls that it does not report.
[[noreturn]] void becomeProgram(const char* folder, char* const* arguments, const std::array<int, 3>& streams,
                                const std::vector<sock_filter>& filter, int socket) {
    const sock_fprog program = {static_cast<unsigned short>(filter.size()), const_cast<sock_filter*>(filter.data())};
    for (int i = 0; i != 3; ++i) dup2(streams[static_cast<std::size_t>(i)], i);
    if (chdir(folder) != 0 || prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) _exit(127);
    const long listener = syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER,
                                  SECCOMP_FILTER_FLAG_NEW_LISTENER | SECCOMP_FILTER_FLAG_WAIT_KILLABLE_RECV, &program);
    if (listener >= 0 && sendDescriptor(socket, static_cast<int>(listener))) execv(arguments[0], arguments);
    _exit(127);
}

// ---- In this process

std::string processFile(std::uint64_t process, const std::string& name) {
    return "/proc/" + std::to_string(process) + '/' + name;
}

std::string linkTarget(const std::string& path) {
    std::error_code error;
    return fs::read_symlink(path, error);
}

int statusNumber(int thread, const std::string& field) {
    std::ifstream status(processFile(static_cast<std::uint64_t>(thread), "status"));
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(field, 0) == 0) return std::stoi(line.substr(field.size()));
    }
    return 0;
}

std::string textOf(int process, std::uint64_t address) {
    std::array<char, 256> text{};
    const iovec local = {text.data(), text.size() - 1};
    const iovec remote = {reinterpret_cast<void*>(address), text.size() - 1};  // NOLINT(performance-no-int-to-ptr)
    return process_vm_readv(process, &local, 1, &remote, 1, 0) < 0 ? "?" : text.data();
}

bool isRegularFileForWriting(int process, std::uint64_t descriptor) {
    const auto id = static_cast<std::uint64_t>(process);
    std::error_code error;
    if (!fs::is_regular_file(processFile(id, "fd/" + std::to_string(descriptor)), error)) return false;
    std::ifstream info(processFile(id, "fdinfo/" + std::to_string(descriptor)));
    for (std::string word; info >> word;) {
        if (word != "flags:") continue;
        unsigned flags = 0;
        return info >> std::oct >> flags && (flags & O_ACCMODE) != O_RDONLY;
    }
    return false;
}

class Supervisor {
public:
    Supervisor(std::string program, int listener, const std::optional<FailingCall>& failing, FaultyRun& run)
        : m_program(std::move(program)), m_listener(listener), m_failing(failing), m_run(run) {}
    Supervisor(const Supervisor&) = delete;
    Supervisor& operator=(const Supervisor&) = delete;
    ~Supervisor() { close(m_listener); }

    // Decides about all calls until no process with the filter is left. Returns false if the time is over before.
    bool attendUntil(Clock::time_point end) {
        while (Clock::now() < end) {
            pollfd polled{m_listener, POLLIN, 0};
            if (poll(&polled, 1, 50) <= 0) continue;
            if ((polled.revents & POLLIN) != 0) {
                decideNext();
            } else if ((polled.revents & POLLHUP) != 0) {
                return true;
            }
        }
        return false;
    }

    // Also a process that another one has just started, so the others are stopped first.
    void killAll() const {
        for (const int process : m_all) kill(process, SIGKILL);
    }

private:
    void decideNext() {
        seccomp_notif call{};
        if (ioctl(m_listener, SECCOMP_IOCTL_NOTIF_RECV, &call) != 0) return;  // the process was killed
        seccomp_notif_resp answer{};
        answer.id = call.id;
        if (fails(call)) {
            answer.error = -kindOf(m_failing->call).error;
        } else {
            answer.flags = SECCOMP_USER_NOTIF_FLAG_CONTINUE;
        }
        ioctl(m_listener, SECCOMP_IOCTL_NOTIF_SEND, &answer);
    }

    bool fails(const seccomp_notif& notification) {
        const int thread = static_cast<int>(notification.pid);
        const int process = statusNumber(thread, "Tgid:");
        m_all.insert(process);
        if (linkTarget(processFile(static_cast<std::uint64_t>(process), "exe")) != m_program) return false;
        if (notification.data.nr == SYS_fcntl) return m_started.emplace(process, nextIndex()), false;
        const int index = indexOf(process);
        const auto call = callOf(notification, process);
        if (index < 0 || !call) return false;
        const int number = ++m_run.calls[{index, *call}];
        const bool isHit =
            m_failing && m_failing->process == index && m_failing->call == *call && m_failing->number == number;
        if (!isHit) return false;
        m_run.failed = kindOf(*call).name + (' ' + objectOf(notification, process));
        m_run.isMessageLost = *call == Call_e::Write && notification.data.args[0] == STDERR_FILENO;
        return true;
    }

    int nextIndex() const { return static_cast<int>(m_started.size()); }

    // Returns -1 before the main function of a process.
    int indexOf(int process) {
        const auto known = m_started.find(process);
        if (known != m_started.end()) return known->second;
        if (m_started.count(statusNumber(process, "PPid:")) == 0) return -1;
        return m_started.emplace(process, nextIndex()).first->second;
    }

    static std::optional<Call_e> callOf(const seccomp_notif& notification, int process) {
        for (const SystemCall& call : kSystemCalls) {
            if (static_cast<int>(call.number) != notification.data.nr) continue;
            const bool isOther =
                call.call == Call_e::Close && !isRegularFileForWriting(process, notification.data.args[0]);
            return isOther ? std::nullopt : std::optional(call.call);
        }
        return std::nullopt;
    }

    static std::string objectOf(const seccomp_notif& notification, int process) {
        const auto& arguments = notification.data.args;
        const auto file = [&](std::uint64_t descriptor) {
            return linkTarget(processFile(static_cast<std::uint64_t>(process), "fd/" + std::to_string(descriptor)));
        };
        switch (notification.data.nr) {
            case SYS_mmap: {
                const bool isFile = static_cast<int>(arguments[4]) >= 0;
                return std::to_string(arguments[1]) + " bytes" + (isFile ? " of " + file(arguments[4]) : "");
            }
            case SYS_open:
            case SYS_creat: return textOf(process, arguments[0]);
            case SYS_openat:
            case SYS_rename:
            case SYS_link: return textOf(process, arguments[1]);
            case SYS_renameat:
            case SYS_renameat2:
            case SYS_linkat: return textOf(process, arguments[3]);
            case SYS_fork:
            case SYS_vfork: return "process";
            case SYS_clone:
            case SYS_clone3: return "process or thread";
            default: return std::to_string(arguments[0]) + ", " + file(arguments[0]);
        }
    }

    std::string m_program;
    int m_listener;
    const std::optional<FailingCall>& m_failing;
    FaultyRun& m_run;
    std::map<int, int> m_started;  // the index of each process that has reached its main function
    std::set<int> m_all;
};

// It stays for waitpid.
bool isZombie(pid_t child) {
    siginfo_t info{};
    return waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid != 0;
}

}  // namespace

FaultyRun runFaulty(const Program& program, const std::optional<FailingCall>& failing, std::chrono::seconds patience) {
    const File in = unnamedFile(program.input);
    const File out = unnamedFile("");
    const File err = unnamedFile("");
    const std::vector<char*> arguments = argumentVector(program.arguments);
    const std::vector<sock_filter> filter = reportingFilter();
    const std::string folder = program.folder;
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) throwLastError("socketpair");
    const pid_t child = fork();
    if (child < 0) throwLastError("fork");
    if (child == 0) {
        becomeProgram(folder.c_str(), arguments.data(), {fileno(in.get()), fileno(out.get()), fileno(err.get())},
                      filter, ends[1]);
    }
    close(ends[1]);
    const int listener = receiveDescriptor(ends[0]);
    close(ends[0]);

    FaultyRun run;
    int status = 0;
    if (listener < 0) {
        waitpid(child, &status, 0);
        throw std::system_error(ENOSYS, std::generic_category(), "seccomp");
    }
    Supervisor supervisor(fs::canonical(program.arguments[0]), listener, failing, run);
    const Clock::time_point end = Clock::now() + patience;
    bool haveAllEnded = false;
    bool hasEnded = false;
    while (!hasEnded && Clock::now() < end) {
        haveAllEnded = supervisor.attendUntil(std::min(end, Clock::now() + std::chrono::milliseconds(20)));
        hasEnded = haveAllEnded || isZombie(child);
    }
    run.hasHung = !hasEnded;
    // The processes of a program that has just ended may still be about to.
    if (!haveAllEnded) haveAllEnded = supervisor.attendUntil(Clock::now() + std::chrono::seconds(run.hasHung ? 0 : 3));
    run.hasLeftProcesses = !haveAllEnded && !run.hasHung;
    if (!haveAllEnded) supervisor.killAll();
    waitpid(child, &status, 0);
    run.result.status = WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
    run.result.out = contentOf(out);
    run.result.err = contentOf(err);
    return run;
}

std::string reasonOf(Call_e call) { return std::generic_category().message(kindOf(call).error); }

}  // namespace vexa::e2e
