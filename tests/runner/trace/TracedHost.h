#pragma once

#include <fstream>
#include <iterator>
#include <string>

#include "support/TemporaryFolder.h"
#include "vexastandin/Host.h"

namespace vexa::runner {

inline std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A host that a trace observes, in a folder of its own.
template <class Trace>
class TracedHost {
public:
    template <class... Arguments>
    explicit TracedHost(const Arguments&... arguments) : m_trace(path(), arguments...) {
        m_host.setObserver(&m_trace);
    }

    standin::Host& host() { return m_host; }
    Trace& trace() { return m_trace; }
    std::string path() const { return m_folder.path("trace"); }
    std::string text() const { return contentOf(path()); }

    /// Unloads all, ends the trace, and returns what is in it.
    std::string finished() {
        m_host.unloadAddOns();
        m_trace.finish(0, "all went well");
        return text();
    }

private:
    tests::TemporaryFolder m_folder;
    Trace m_trace;
    standin::Host m_host;
};

}  // namespace vexa::runner
