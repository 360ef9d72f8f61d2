#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "contract/CallText.h"
#include "contract/Checks.h"
#include "contract/Contract.h"
#include "contract/HostFunctionTable.h"
#include "contract/ThreadNumbers.h"
#include "contract/messages/EventMessage.h"
#include "layer/CodeObjects.h"
#include "layer/Connection.h"
#include "layer/LayerTime.h"
#include "layer/OpenEntries.h"
#include "layer/Settings.h"
#include "layer/ThreadFrames.h"

namespace vexa::layer {

/// Whether this process is a copy of one that has a layer, which the program forked. It has no layer then.
bool wasForked();

/// Checks the calls of the program's add-ons, and sends what happens to the process that started the program.
///
/// There is one layer in a process. It is never destroyed, because threads may use it until the process is gone.
/// Threads: safe from any. It holds no lock while the program's code runs.
class Layer : private standin::HandleNamesInterface, private standin::HostStringsInterface {
public:
    explicit Layer(const Settings& settings);

    /// The layer of this process; null before start(), and in a process that the program forked.
    static Layer* current();
    /// Creates the layer, unless there is one.
    static void start(const Settings& settings);

    /// An add-on calls the host.
    /// \param frame the address of the caller's frame.
    /// \return the number of the call.
    template <standin::HostFunction function, class... Arguments>
    std::size_t callBegan(const void* frame, const Arguments&... arguments) {
        closeFrames(frame);
        const std::size_t number = ++m_calls;
        if (m_isTraced) beginTracedCall(frame, number, function, listOf(names(), arguments...));
        standin::checkCall<function>(m_contract, number, arguments...);
        return number;
    }

    /// The host returned nothing.
    template <standin::HostFunction function, class... Arguments>
    void callEnded(const void* frame, std::size_t number, const Arguments&... arguments) {
        closeInnerFrames(frame);
        standin::checkReturn<function>(m_contract, number, arguments...);
        if (m_isTraced) endTracedCall(frame, "");
    }

    /// The host returned \p result.
    template <standin::HostFunction function, class Result, class... Arguments>
    void callReturned(const void* frame, std::size_t number, Result result, const Arguments&... arguments) {
        closeInnerFrames(frame);
        const standin::Returned<Result> returned{result, numberOf(result)};
        standin::checkReturn<function>(m_contract, number, returned, arguments...);
        learn<function>(result, arguments...);
        if (m_isTraced) endTracedCall(frame, textOf(names(), result));
    }

    /// The host enters an add-on.
    /// \param command empty if it runs no command.
    /// \param function the function of the add-on that the host calls.
    void entryBegan(const void* frame, standin::Entry_e kind, const std::string& addOnId, const std::string& command,
                    const void* function);
    /// The add-on that is being loaded gets \p identity.
    void introduce(const AddOnList_s* identity) { m_contract.introduce(identity); }
    /// The add-on that was loaded at \p frame returned. \p addOnId is null if it refuses to be loaded.
    void loadingEnded(const void* frame, const AddOnList_s* identity, const char* addOnId);
    /// The command that was entered at \p frame returned. \p errMsg is null if there is none.
    void commandEnded(const void* frame, bool isAccepted, const char* errMsg);
    /// The shutdown that was entered at \p frame returned.
    void shutdownEnded(const void* frame);
    /// An add-on is unloaded, and has freed what it wants to free.
    /// \param hasShutdown whether shutdownEnded() has told that the add-on ends.
    void unloaded(const std::string& addOnId, bool hasShutdown);
    /// Ends the entries that an exception, a jump or the end of their thread has left.
    void closeLeftEntries();

    /// Sends the path of an object whose calls of the host are an add-on's, before its code runs.
    void addOnMapped(const std::string& object);

    /// Sends a text for the user.
    void note(const std::string& text);

private:
    const standin::HandleNamesInterface& names() const { return *this; }
    std::string nameOf(const AddOnList_s* identity) const override;
    std::string nameOf(const ThreadMutex_s* mutex) const override { return m_contract.nameOf(mutex); }
    std::string nameOf(const ArgList_s* argList) const override { return m_contract.nameOf(argList); }
    std::string nameOf(const Set_s* set) const override { return m_contract.nameOf(set); }
    std::string nameOf(const char* string) const override { return m_contract.nameOf(string); }
    standin::HostStringState stateOf(const char* string) const override;

    template <class Result>
    std::size_t numberOf(Result result) {
        if constexpr (std::is_pointer_v<Result>) return result == nullptr ? 0 : ++counterOf(result);
        return 0;
    }
    std::atomic<std::size_t>& counterOf(const ThreadMutex_s*) { return m_made[0]; }
    std::atomic<std::size_t>& counterOf(const ArgList_s*) { return m_made[1]; }
    std::atomic<std::size_t>& counterOf(const Set_s*) { return m_made[2]; }
    std::atomic<std::size_t>& counterOf(const char*) { return m_made[3]; }

    // What a result says about the host's objects.
    template <standin::HostFunction function, class Result, class... Arguments>
    void learn(Result result, const Arguments&... arguments) {
        if constexpr (function == standin::HostFunction::VexaUtilStringAlloc) learnString(result, arguments...);
        if constexpr (function == standin::HostFunction::VexaUtilStyleGetLowLevelX) {
            if (result == GetValueReturnCode_Ok) m_contract.lendResultOf(arguments...);
        }
    }
    void learnString(const char* string, int size, const char*);

    void beginTracedCall(const void* frame, std::size_t number, standin::HostFunction function, std::string arguments);
    void endTracedCall(const void* frame, std::string result);
    /// Ends what the thread left by an exception or a jump before it made the frame \p frame.
    void closeFrames(const void* frame);
    /// The same, before it returned to the frame \p frame.
    void closeInnerFrames(const void* frame);
    void endCall(standin::CallEvent* call);
    /// The entry that was begun at \p frame; nothing if it is not open.
    std::optional<standin::EntryEvent> returnedTo(const void* frame);
    void endEntry(standin::EntryEvent& entry, bool isGone = true);
    void abandon(const LeftEntry& left);
    void sendEnd(long thread, standin::EntryEvent& entry);

    std::string textOfError(const char* errMsg) const;
    template <class Content>
    void send(standin::Message_e kind, const Content& content);

    Connection m_connection;
    std::string m_entryName;
    bool m_isTraced;
    std::atomic<std::size_t> m_calls{0};
    std::atomic<std::size_t> m_commands{0};
    std::array<std::atomic<std::size_t>, 4> m_made{};  // handles by kind
    standin::ThreadNumbers m_threads;
    OpenEntries m_entries;
    CodeObjects m_codeObjects;
    mutable standin::Contract m_contract;  // it locks itself

    mutable std::mutex m_guard;  // of what follows
    std::unordered_map<const void*, std::size_t> m_stringSizes;
    std::unordered_map<const AddOnList_s*, std::string> m_ids;
};

/// Passes the layer to \p action, unless there is none or the thread is in it already. Checking must not end the
/// program: what goes wrong is left out.
template <class Action>
void inLayer(const Action& action) noexcept {
    Layer* const layer = isThreadInLayer ? nullptr : Layer::current();
    if (layer == nullptr) return;
    const LayerTime time;
    try {
        action(*layer);
    } catch (...) {}
}

}  // namespace vexa::layer
