#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

#include "system/processes/ThreadTracer.h"

namespace vexa::runner {

/// A forked process that waits for go(), and then does its work.
class TracedChild {
public:
    /// \param before what the process does before it waits
    TracedChild(
        const std::function<void()>& work, const std::function<void()>& before = [] {}) {
        if (pipe(m_go.data()) != 0 || pipe(m_ready.data()) != 0) std::abort();
        m_id = fork();
        if (m_id != 0) {
            awaitByte(m_ready[0]);
            return;
        }
        for (const int signal : {SIGSEGV, SIGABRT}) ::signal(signal, SIG_DFL);  // which sanitizers handle
        before();
        sendByte(m_ready[1]);
        awaitByte(m_go[0]);
        work();
        _exit(0);
    }
    TracedChild(const TracedChild&) = delete;
    TracedChild& operator=(const TracedChild&) = delete;
    ~TracedChild() {
        if (!m_isOver) kill(m_id, SIGKILL), finish();
        for (const int end : {m_go[0], m_go[1], m_ready[0], m_ready[1]}) close(end);
    }

    pid_t id() const { return m_id; }
    void go() const { sendByte(m_go[1]); }

    /// Attends to \p tracer until \p isDone, but at most for a minute.
    template <class Condition>
    static bool attendUntil(ThreadTracer& tracer, const Condition& isDone) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        for (tracer.attend(); !isDone(); tracer.attend()) {
            if (std::chrono::steady_clock::now() > end) return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }
    bool hasEnded() const {
        siginfo_t info{};
        return waitid(P_PID, static_cast<id_t>(m_id), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && isEnd(info);
    }
    /// Attends to \p tracer until the process has ended.
    /// \return its end, as from waitpid()
    int endUnder(ThreadTracer& tracer) {
        attendUntil(tracer, [this] { return hasEnded(); });
        return finish();
    }

    static void sendByte(int descriptor) { [[maybe_unused]] const auto sent = ::write(descriptor, "b", 1); }
    static void awaitByte(int descriptor) {
        char byte = 0;
        while (::read(descriptor, &byte, 1) < 0 && errno == EINTR) {}
    }

private:
    int finish() {
        m_isOver = true;
        collectThreadsOf(m_id);
        int status = 0;
        while (waitpid(m_id, &status, 0) < 0 ? errno == EINTR : WIFSTOPPED(status)) {}
        return status;
    }

    std::array<int, 2> m_go{};
    std::array<int, 2> m_ready{};
    pid_t m_id = 0;
    bool m_isOver = false;
};

}  // namespace vexa::runner
