#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "vexastandin/Export.h"

namespace vexa::standin {

/// How bad it is to break a rule.
enum class Severity_e {
    Warning,  ///< it works, but users are served badly
    Error     ///< a host may crash or hang over it
};

/// A rule of the host's contract with its add-ons.
struct Rule {
    const char* name;     ///< short and stable, for example "unbalanced-lock"
    const char* family;   ///< what it is about, for example "Mutexes"
    Severity_e severity;  ///< how bad it is to break it
    const char* summary;  ///< the rule, in one sentence
    const char* why;      ///< what comes of breaking it
    const char* hint;     ///< how to mend it
};

/// Every rule, sorted for reading: the rules of a family stand together.
VEXASTANDIN_API const std::vector<Rule>& rules();
/// The rule \p name; null when there is none.
VEXASTANDIN_API const Rule* findRule(std::string_view name);
/// What add-ons can do wrong and the stand-in cannot see, a sentence each.
VEXASTANDIN_API const std::vector<const char*>& uncheckedMistakes();

/// Where something happened.
struct Place {
    std::size_t call = 0;   ///< the number of the host call, counted from 1; 0 when it was no host call
    std::string function;   ///< the function of that call
    std::string command;    ///< `ADDON-ID text`, `loading of FILE` or `unloading of ADDON-ID`; empty outside of add-ons
    std::string macroLine;  ///< `FILE:LINE` of the command, when it came from a macro file
    std::size_t thread = 0;  ///< the thread, numbered from 1 in the order in which the host met them
};

/// A breach of a rule.
struct Finding {
    std::string rule;                         ///< the name of the rule
    Severity_e severity = Severity_e::Error;  ///< the rule's
    std::string message;                      ///< what happened, a line that names all it is about
    std::string addOnId;                      ///< whose it is; empty when no add-on was running
    std::optional<Place> opened;              ///< what should have been undone, or was first; not always there
    Place seen;                               ///< where it came to light
    std::size_t count = 1;                    ///< how many of a kind it tells of: leaks, or beginnings without end
    std::size_t repeats = 0;                  ///< how many more there were that are counted only, after this one
};

/// \p finding for people to read: a line with the macro's line and the rule, then both places and the hint, indented.
VEXASTANDIN_API std::string textOf(const Finding& finding);
/// \p finding as one line, for people who have read textOf() of another finding of the same cause.
VEXASTANDIN_API std::string briefTextOf(const Finding& finding);

/// Remembers causes of findings, so that each is told in full only once:
///
///     vexa::standin::FindingCauses causes;
///     for (const Finding& finding : host.violations()) {
///         std::cout << (causes.add(finding) ? textOf(finding) : briefTextOf(finding));
///     }
///
/// Findings have the same cause when one add-on broke one rule by the same host functions.
/// Threads: one at a time.
class VEXASTANDIN_API FindingCauses {
public:
    /// Adds the cause of \p finding.
    /// \return whether it is the first of this cause.
    bool add(const Finding& finding);

private:
    std::set<std::vector<std::string>> m_causes;
};

}  // namespace vexa::standin
