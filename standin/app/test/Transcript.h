#pragma once

#include <string>
#include <vector>

#include "ContractOptions.h"
#include "StyleFile.h"
#include "many/Processes.h"

namespace vexa::runner {

/// What a macro is run with for a transcript.
struct TranscriptOptions {
    std::string macroFile;
    std::vector<std::string> addOns;
    std::vector<StyleSetting> style;
    ContractOptions contract;
    bool batch = false;
};

/// How the process that writes a transcript ends, if nothing ends it before.
enum class TranscriptEnd_e : int {
    Whole = 10,        ///< the notes hold the transcript
    Broken = 11,       ///< so they do, and with --strict the contract was broken
    NotRun = 12,       ///< the macro could not be run; the notes tell why
    CommandHung = 13,  ///< the notes hold the transcript up to a command that did not return
};

/// Runs a macro in this process, and writes what its add-ons do to the notes of \p files, line by line:
///
///     > STATS MEAN ZONES = '1-3'      a command of the macro
///       mean 5.9                      what was printed, on both outputs, which is taken out of \p files
///     \ no line end                   of what was printed last
///     ! no such zone                  why the command failed
///     ! dialog: no such zone          a dialog
///     ! error: ... [unbalanced-lock]  a breach of the contract
///     + STATS MEAN ZONES = '1-3'      what was recorded
///     > (unloading)                   what comes of that; left out when there is nothing
TranscriptEnd_e writeTranscript(const TranscriptOptions& options, ProcessFiles& files);

/// The lines of a transcript for what was printed.
std::string printedLines(const std::string& text);

}  // namespace vexa::runner
