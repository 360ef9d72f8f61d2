#pragma once

#include <optional>
#include <string>
#include <vector>

#include "AtomicFile.h"
#include "vexastandin/Host.h"

namespace vexa::runner {

/// The recording and the journal of a run, each written as a whole when it is over.
class RunOutputs {
public:
    /// Makes sure that what is asked for can be written.
    /// \throws OutputError
    void open(const std::optional<std::string>& recordFile, const std::optional<std::string>& journalFile);
    /// Writes what \p host was given to record and to add to its journal. What goes wrong is told.
    /// \param summary gets what was written.
    /// \return whether all was written.
    bool write(const standin::Host& host, std::string& summary);

private:
    std::optional<AtomicFile> m_record;
    std::optional<AtomicFile> m_journal;
};

}  // namespace vexa::runner
