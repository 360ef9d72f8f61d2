#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "commands/attach/StatusCalls.h"
#include "contract/messages/EventMessage.h"
#include "options/ContractOptions.h"
#include "session/FindingPrinter.h"
#include "session/Session.h"
#include "vexastandin/Host.h"
#include "vexastandin/Observer.h"

namespace vexa::runner {

/// Receives what happens in programs that the layer watches: prints the findings and failed commands, and passes all
/// events on to traces.
class LayerEvents {
public:
    /// \param traces gets the events; may be null.
    LayerEvents(const ContractOptions& options, standin::ObserverInterface* traces);

    /// Takes a message of the layer.
    void take(std::string_view bytes);
    /// Call it when no more messages come.
    void finish();

    bool wasAddOnLoaded() const { return m_wasAddOnLoaded; }
    /// Returns true if the host has loaded the file as an add-on, or as a library for an add-on.
    bool isOfAddOn(const std::string& object) const { return m_addOnObjects.count(object) != 0; }
    bool isContractBroken() const { return runner::isContractBroken(m_host, m_options); }
    /// What add-ons were doing when the messages ended, a text each.
    std::vector<std::string> unfinished() const;

    /// \name The time limit of what add-ons do
    /// @{
    using Clock = std::chrono::steady_clock;
    /// Reports a command, loading or unloading that takes longer than \p limit.
    /// \return its thread, whose work is no longer unfinished; nothing if there is none.
    std::optional<long> reportLate(Clock::duration limit);
    /// Does not count \p time, in which nobody could receive messages.
    void forgive(Clock::duration time);
    /// @}

private:
    // An entry into an add-on, and the findings about it that wait for the add-on's id.
    struct OpenEntry {
        standin::EntryEvent event;
        Clock::time_point began;
        std::vector<standin::Finding> findings;
    };

    void takeCall(const standin::EventMessage& message);
    void takeEntry(const standin::EventMessage& message);
    void takeFinding(long thread, const standin::Finding& finding);
    void endEntry(long thread, const standin::EntryEvent& entry);
    void tellFailure(const standin::EntryEvent& entry);
    void report(const standin::Finding& finding);

    const ContractOptions& m_options;
    standin::ObserverInterface* m_traces;
    SourceFinder m_sources;
    standin::Host m_host;  // it runs nothing; it keeps the findings
    FindingPrinter m_printer;
    std::map<long, std::vector<OpenEntry>> m_entries;  // by thread
    StatusCalls m_status;
    std::set<std::string> m_addOnObjects;  // paths
    bool m_wasAddOnLoaded = false;
};

}  // namespace vexa::runner
