#pragma once

#include <cstddef>
#include <map>
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

/// Receives what happens in programs that the layer watches: prints the findings, and passes all events on to traces.
class LayerEvents {
public:
    /// \param traces gets the events; may be null.
    LayerEvents(const ContractOptions& options, standin::ObserverInterface* traces);

    /// Takes a message of the layer.
    void take(std::string_view bytes);
    /// Call it when no more messages come.
    void finish();

    bool wasAddOnLoaded() const { return m_wasAddOnLoaded; }
    bool isContractBroken() const { return runner::isContractBroken(m_host, m_options); }
    /// What add-ons were doing when the messages ended, a text each.
    std::vector<std::string> unfinished() const;

private:
    // An entry into an add-on, and the findings about it that wait for the add-on's id.
    struct OpenEntry {
        standin::EntryEvent event;
        std::vector<standin::Finding> findings;
    };

    void takeCall(const standin::EventMessage& message);
    void takeEntry(const standin::EventMessage& message);
    void takeFinding(long thread, const standin::Finding& finding);
    void endEntry(long thread, const standin::EntryEvent& entry);
    void report(const standin::Finding& finding);

    const ContractOptions& m_options;
    standin::ObserverInterface* m_traces;
    SourceFinder m_sources;
    standin::Host m_host;  // it runs nothing; it keeps the findings
    FindingPrinter m_printer;
    std::map<long, std::vector<OpenEntry>> m_entries;  // by thread
    StatusCalls m_status;
    bool m_wasAddOnLoaded = false;
};

}  // namespace vexa::runner
