#pragma once

#include <string>

#include "probe/questions/Circumstances.h"

namespace vexa::probe {

/// The probe as long as it is loaded. It asks the host on command, and notes what the host does between commands.
///
/// Errors: the functions throw `std::runtime_error` if the facts file cannot be read or written.
/// Threads: those of an add-on: the host's.
class Probe {
public:
    /// Notes the circumstances of the loading.
    /// \param self what the host passed.
    Probe(const char* addOnId, AddOnList_s* self);

    const char* id() const { return m_circumstances.addOnId; }

    /// Notes that a command starts. The text is as the host passed it.
    void startCommand(const char* text);
    /// Asks the host, and completes the facts file \p file. From now on, what the host does goes there.
    void write(const std::string& file, const std::string& setting, bool isRisky);
    /// From now on, what the host does goes to the facts file \p file. It must exist.
    void watch(const std::string& file);
    /// Notes that the command fails on purpose.
    void noteFailure();
    /// Completes the facts file by what only a shutdown shows. Prints an error, because a shutdown cannot report it.
    void shutDown() noexcept;

private:
    void noteShutdown() const;

    Circumstances m_circumstances;
    std::string m_file;        // absolute; empty until a command names it
    bool m_hasFailed = false;  // the last command failed on purpose
};

}  // namespace vexa::probe
