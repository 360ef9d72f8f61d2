#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "vexastandin/HostFunctions.h"

namespace vexa::runner {

using Names = std::set<std::string, std::less<>>;

/// What runs have seen of a command.
struct CommandCoverage {
    Names ends;                                       ///< how the command ended: kAccepted, kFailed
    Names options;                                    ///< the names of its options `NAME = value`
    std::map<std::string, Names, std::less<>> calls;  ///< host functions it called, and their answers: see answersOf()
};

/// \name The ways in which a command ends
/// @{
inline constexpr char kAccepted[] = "accepted";
inline constexpr char kFailed[] = "failed";
/// @}

/// What runs have used of the host's contract. It holds facts and no counts, so neither the order nor the number of
/// equal runs changes it.
struct Coverage {
    std::map<std::string, CommandCoverage, std::less<>> commands;  ///< by `ADDON-ID NAME`, or a name below
    Names rules;                                                   ///< rules that had a chance to fire
};

/// \name Names for host calls outside of commands
/// @{
inline constexpr char kLoading[] = "(loading)";
inline constexpr char kUnloading[] = "(unloading)";
inline constexpr char kOutside[] = "(between commands)";
/// @}
/// The name, after the add-on's id, of commands whose text does not start with a name.
inline constexpr char kUnnamed[] = "(other text)";

/// Adds the facts of \p more to \p coverage.
/// \return true if some of them were new.
bool merge(Coverage& coverage, const Coverage& more);

/// Returns the answers to tell apart in the results of a host function: two, or none if it returns nothing. The first
/// one is the answer of a call that worked, or "yes".
const std::vector<std::string>& answersOf(standin::ResultKind_e kind);

/// Returns the answer in \p result, which is text as in a trace; empty if the function returns nothing.
std::string answerIn(const std::string& result, standin::ResultKind_e kind);

/// Returns the host functions that \p coverage has seen, with their answers in all commands.
std::map<std::string, Names, std::less<>> callsOf(const Coverage& coverage);

/// A part that was seen, and the whole.
struct Share {
    std::size_t seen = 0;
    std::size_t all = 0;

    /// Returns the share in percent; 0 if there is nothing to see.
    double percent() const { return all == 0 ? 0 : 100.0 * static_cast<double>(seen) / static_cast<double>(all); }
};

/// The figures of a coverage. The whole is the contract, so more runs never make a figure smaller.
struct CoverageFigures {
    Share calls;     ///< host functions that were called
    Share outcomes;  ///< answers of host functions that can answer in two ways
    Share rules;     ///< rules that had a chance to fire

    Share total() const { return {calls.seen + outcomes.seen + rules.seen, calls.all + outcomes.all + rules.all}; }
};

/// Counts what is in \p coverage. Names that this version of the contract does not have do not count.
CoverageFigures figuresOf(const Coverage& coverage);

}  // namespace vexa::runner
