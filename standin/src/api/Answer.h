/// \file
/// answer(), which every function of the host's C API calls. It numbers the call, logs it, checks it and makes it fail
/// if a fault is planned.
#pragma once

#include <chrono>
#include <cstddef>
#include <exception>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>

#include "HostState.h"
#include "api/CallInProgress.h"
#include "api/HandleNames.h"
#include "calls/Whereabouts.h"
#include "contract/Checks.h"
#include "contract/HostFunctionTable.h"
#include "vexa/VexaUtil.h"

namespace vexa::standin {

/// Tells the log and the observer of one call. Without memory for that the call is left out: it must not fail because
/// it is watched.
class WatchedCall {
public:
    template <class... Arguments>
    WatchedCall(HostState& host, HostFunction function, const Arguments&... arguments)
        : m_host(host), m_number(host.countCall(function)), m_isLogged(host.calls.keeps()) {
        if (!m_isLogged && !host.audience.isThere()) return;
        try {
            begin(function, listOf(HandleNames(host), arguments...));
        } catch (const std::bad_alloc&) {
            m_event.reset();
        }
    }
    WatchedCall(const WatchedCall&) = delete;
    WatchedCall& operator=(const WatchedCall&) = delete;
    ~WatchedCall() {
        if (!m_event || !m_host.audience.isThere()) return;
        m_event->time = std::chrono::steady_clock::now();
        m_event->threw = std::uncaught_exceptions() > m_exceptions;
        m_host.audience.tell([&](ObserverInterface& observer) { observer.callEnded(*m_event); });
    }

    std::size_t number() const { return m_number; }

    template <class Result>
    void setResult(Result result) {
        if (!m_event) return;
        try {
            m_event->result = textOf(HandleNames(m_host), result);
            if (m_isLogged) m_host.calls.end(m_place, m_event->result);
        } catch (const std::bad_alloc&) {}
    }

private:
    void begin(HostFunction function, std::string arguments) {
        CallEvent& event = m_event.emplace();
        event.number = m_number;
        event.function = nameOf(function);
        event.thread = std::this_thread::get_id();
        if (m_isLogged) m_place = m_host.calls.begin({event.function, arguments, "", event.thread, m_number});
        if (!m_host.audience.isThere()) return;
        event.arguments = std::move(arguments);
        event.threadNumber = m_host.threads.mine();
        event.time = std::chrono::steady_clock::now();
        m_exceptions = std::uncaught_exceptions();
        m_host.audience.tell([&](ObserverInterface& observer) { observer.callBegan(event); });
    }

    HostState& m_host;
    std::size_t m_number;
    bool m_isLogged;
    std::optional<CallEvent> m_event;  // empty if nobody watches
    std::size_t m_place = 0;
    int m_exceptions = 0;
};

template <class Result>
Result failureOf(int code) {
    if constexpr (std::is_pointer_v<Result>) {
        return nullptr;
    } else {
        return static_cast<Result>(code);
    }
}

/// What a function returns if it cannot do its work.
template <class Result>
Result refusal() {
    if constexpr (!std::is_void_v<Result>) {
        return failureOf<Result>(std::is_enum_v<Result> ? GetValueReturnCode_UnknownPath : 0);
    }
}

/// Runs \p action. If it has no memory, the function refuses: add-ons expect no exception.
template <class Action>
std::invoke_result_t<Action, HostState&> act(const Action& action, HostState& host) {
    try {
        return action(host);
    } catch (const std::bad_alloc&) {
        return refusal<std::invoke_result_t<Action, HostState&>>();
    }
}

/// The number of the object behind a handle that a function returns; 0 if it returns no handle.
inline std::size_t numberOf(const HostState& host, const ThreadMutex_s* mutex) { return host.mutexes.numberOf(mutex); }
inline std::size_t numberOf(const HostState& host, const ArgList_s* argList) { return host.argLists.numberOf(argList); }
inline std::size_t numberOf(const HostState& host, const Set_s* set) { return host.sets.numberOf(set); }
inline std::size_t numberOf(const HostState& host, const char* string) { return host.strings.numberOf(string); }

template <class Number, std::enable_if_t<!std::is_pointer_v<Number>, int> = 0>
std::size_t numberOf(const HostState&, Number) {
    return 0;
}

template <HostFunction function, class Action, class... Arguments>
std::invoke_result_t<Action, HostState&> answer(const Action& action, const Arguments&... arguments) {
    using Result = std::invoke_result_t<Action, HostState&>;
    const Whereabouts backInHost(false);
    const CallInProgress inProgress;
    HostState* const host = inProgress.host();
    if (host == nullptr) return refusal<Result>();
    if (host->isLeftAlone()) {
        host->countUnnumbered(function);
        return act(action, *host);
    }
    WatchedCall call(*host, function, arguments...);
    checkCall<function>(host->contract, call.number(), arguments...);
    const std::optional<Fault> fault = host->faults.next(function);
    if (fault && fault->throws) throw std::runtime_error(std::string(nameOf(function)) + " was told to throw");
    if constexpr (std::is_void_v<Result>) {
        if (!fault) act(action, *host);
        checkReturn<function>(host->contract, call.number(), arguments...);
    } else {
        const Result result = fault ? failureOf<Result>(fault->result) : act(action, *host);
        const Returned<Result> returned{result, numberOf(*host, result)};
        checkReturn<function>(host->contract, call.number(), returned, arguments...);
        call.setResult(result);
        return result;
    }
}

}  // namespace vexa::standin
