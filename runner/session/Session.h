#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "formats/MacroFile.h"
#include "options/ContractOptions.h"
#include "session/Watchdog.h"
#include "session/watch/ProcessBox.h"
#include "stacks/SourceFinder.h"
#include "system/files/RunFiles.h"
#include "vexastandin/Host.h"

namespace vexa::runner {

/// The options of a session.
struct SessionOptions {
    std::vector<std::string> addOns;   ///< the files to load
    std::optional<std::string> style;  ///< the style file
    ContractOptions contract;          ///< how the host checks its contract, and the time limit
    standin::HostFacts facts;          ///< of the host to answer like; see readHostFacts()
    bool batch = false;                ///< the host says that it is in batch mode
    bool inProcess = false;            ///< run in this process, for a debugger
};

/// Reads the facts file of the host to answer like, if one is named, and says which facts the stand-in cannot imitate.
/// \return whether the file could be read; if not, the reason was told.
bool readHostFacts(SessionOptions& options);

/// The files that a session with \p options reads, so that no output replaces one of them.
RunFiles inputsOf(const SessionOptions& options);

/// Why a command failed, for the user: the message of the add-on, if it gave one. The text lives as long as \p result.
std::string_view failureText(const standin::CommandResult& result);

/// The text of failureText(), and in a further line the place in the source of the add-on, if it is known.
std::string failureWithSource(const standin::CommandResult& result);

/// Whether \p options are strict and an add-on of \p host broke a rule that counts.
bool isContractBroken(const standin::Host& host, const ContractOptions& options);

/// Work of a session that took longer than the time limit.
struct Overrun {
    MacroCommand work;                        ///< a command; of other work only the text, such as `loading of FILE`
    std::chrono::duration<double> limit;      ///< the limit of this work
    std::optional<standin::Finding> finding;  ///< the finding about the add-on; empty if no add-on was called
};

/// A stand-in host that is set up from options. Every command of the program runs add-ons by a session.
///
/// The session writes to the process box what the add-ons are doing. If work exceeds the time limit, the session ends
/// the process. Threads: as for standin::Host.
class Session {
public:
    /// Reports work that took too long, and returns the exit status of the process.
    using ConcludeOverrun = std::function<int(const Overrun&)>;

    /// \param options  must outlive the session. The caller passes the style file to the host.
    /// \param box      must outlive the session.
    /// \param conclude called on a thread of the session while the add-on still runs; null for no time limit.
    Session(const SessionOptions& options, ProcessBox& box, ConcludeOverrun conclude = nullptr);

    standin::Host& host() { return m_host; }
    const standin::Host& host() const { return m_host; }

    /// Loads an add-on.
    /// \throws standin::LoadError
    standin::AddOnInfo loadAddOn(const std::string& file);
    /// Loads the add-ons of the options, and prints why one cannot be loaded.
    /// \return whether all were loaded
    bool loadAddOns();
    /// Unloads all add-ons. The host does this in one call, so the time limit counts once for each of them.
    void unloadAddOns();
    /// Reads a macro file for the loaded add-ons. The time limit applies, because a pipe may have no end.
    MacroFile readMacro(const std::string& file, UnknownId_e unknownId = UnknownId_e::RefusesFile);
    /// Runs a command. The place of a failure has the line of the source, if it is known.
    /// \throws vexa::InvalidArgumentException if its add-on is not loaded.
    standin::CommandResult run(const MacroCommand& command);
    /// Does the same, but does not look for the line of the source, which takes longer than many commands.
    standin::CommandResult runWithoutSource(const MacroCommand& command);

    /// Tells the user once how to see lines of the source, if a finding or a failure could not name one.
    void hintAtLines();

    /// The ids of the loaded add-ons.
    std::set<std::string> addOnIds() const;
    /// Returns true if the options are strict and a finding makes the run fail.
    bool isContractBroken() const { return runner::isContractBroken(m_host, m_options.contract); }

private:
    class TimeInAddOn;

    [[noreturn]] void endProcess(const ConcludeOverrun& conclude);

    const SessionOptions& m_options;
    ProcessBox& m_box;
    bool m_isReading = false;
    std::optional<Watchdog> m_watchdog;
    SourceFinder m_sources;
    standin::Host m_host;
};

}  // namespace vexa::runner
