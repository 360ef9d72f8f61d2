#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "vexastandin/Export.h"

namespace vexa::standin {

/// The severity of breaking a rule.
enum class Severity_e {
    Warning,  ///< the add-on works, but its users have a disadvantage
    Error     ///< a host may crash or hang
};

/// Returns "error" or "warning".
inline const char* nameOf(Severity_e severity) { return severity == Severity_e::Error ? "error" : "warning"; }

/// A rule of the contract between the host and its add-ons.
struct Rule {
    const char* name;     ///< short and stable, for example "unbalanced-lock"
    const char* family;   ///< the subject, for example "Mutexes"
    Severity_e severity;  ///< the severity of breaking the rule
    const char* summary;  ///< the rule, in one sentence
    const char* why;      ///< what happens if an add-on breaks the rule
    const char* hint;     ///< how to fix the add-on
    const char* unseen =
        "";  ///< what `attach` cannot see of it in a host that is not the stand-in; empty if it sees all
};

/// The kind of event that makes the stand-in check a rule.
enum class RuleTrigger_e {
    Call,             ///< a call of one of certain functions
    Entry,            ///< an add-on is loaded, runs a command or is unloaded
    AcceptedCommand,  ///< a command succeeds
    FailedCommand,    ///< a command fails
    SecondThread,     ///< a second thread calls the host
    TimeLimit,        ///< a command has a time limit
    Replay            ///< a recorded command is run again
};

/// The event that makes the stand-in check a rule. A run without this event proves nothing about the rule.
struct RuleTrigger {
    RuleTrigger_e kind;                  ///< the kind of event
    std::vector<const char*> functions;  ///< for RuleTrigger_e::Call: a call of any of these functions is enough
};

/// Returns all rules, grouped by family.
VEXASTANDIN_API const std::vector<Rule>& rules();
/// Returns the rule \p name; null if there is no such rule.
VEXASTANDIN_API const Rule* findRule(std::string_view name);
/// Returns the event that makes the stand-in check the rule \p rule; null if there is no such rule.
VEXASTANDIN_API const RuleTrigger* findTrigger(std::string_view rule);
/// Returns the mistakes of add-ons that the stand-in host cannot detect, one sentence for each.
VEXASTANDIN_API const std::vector<const char*>& uncheckedMistakes();
/// Returns what `attach` does not check in a host that is not the stand-in, whatever the rule, one sentence for each.
VEXASTANDIN_API const std::vector<const char*>& uncheckedInOtherHosts();

/// A place in the code of a program or a shared object.
struct CodePlace {
    std::string object;         ///< the path of the object; empty if unknown
    std::uintptr_t offset = 0;  ///< the address as in the object's symbol table; in memory if the object is unknown
    std::string buildId;        ///< the build id of the object, as hexadecimal digits; empty if it has none
    bool isAddOn = false;       ///< true if the object was loaded with an add-on or later
};

/// The calls that led to an event, the innermost first. Each place is within the instruction that calls.
using CodeStack = std::vector<CodePlace>;

/// A place in the source of an add-on.
struct SourcePlace {
    std::string function;  ///< as in the source; empty if unknown
    std::string file;      ///< the path of the file; empty if unknown
    std::size_t line = 0;  ///< counted from 1; 0 if unknown
    std::string text;      ///< one or more lines for a message; empty if nothing is known
};

/// The place of an event: host call, command, macro line and thread.
struct Place {
    std::size_t call = 0;   ///< the number of the host call, counted from 1; 0 if the event was not a host call
    std::string function;   ///< the function of that call
    std::string command;    ///< `ADDON-ID text`, `loading of FILE` or `unloading of ADDON-ID`; empty outside of add-ons
    std::string macroLine;  ///< `FILE:LINE` of the command, if it came from a macro file
    std::size_t thread = 0;  ///< the thread; the host numbers threads from 1 in the order of their first event
    /// The calls that led to the event. Of the start or the end of a command only the function of the add-on, or the
    /// calls that threw the exception that ended the command. Null if unknown.
    std::shared_ptr<const CodeStack> stack = nullptr;
    SourcePlace source = SourcePlace();  ///< what a function passed to Host::onFinding() found out; else empty
};

/// A violation of a rule.
struct Finding {
    std::string rule;                         ///< the name of the rule
    Severity_e severity = Severity_e::Error;  ///< the severity of the rule
    std::string message;                      ///< what happened, in one line
    std::string addOnId;                      ///< the add-on; empty if no add-on was running
    std::optional<Place> opened;              ///< the call that started the problem, such as a start without a finish
    Place seen;                               ///< where the stand-in host detected it
    std::size_t count = 1;                    ///< how many leaks, or starts without a finish, this finding stands for
    std::size_t repeats = 0;                  ///< how many later findings of the same kind were only counted
};

/// Returns the text of \p finding: a line with the macro line and the rule, then indented lines with both places and
/// the hint.
VEXASTANDIN_API std::string textOf(const Finding& finding);
/// Returns a single line about \p finding. Use it if textOf() has already shown another finding with the same cause.
VEXASTANDIN_API std::string briefTextOf(const Finding& finding);

/// Remembers the causes of findings, so that a program can show each cause in full only once:
///
///     vexa::standin::FindingCauses causes;
///     for (const Finding& finding : host.violations()) {
///         std::cout << (causes.add(finding) ? textOf(finding) : briefTextOf(finding));
///     }
///
/// Two findings have the same cause if the same add-on broke the same rule by calls of the same host functions.
/// Threads: one thread at a time may use the object.
class VEXASTANDIN_API FindingCauses {
public:
    /// Adds the cause of \p finding.
    /// \return true if no earlier finding had this cause.
    bool add(const Finding& finding);

private:
    std::set<std::vector<std::string>> m_causes;
};

}  // namespace vexa::standin
