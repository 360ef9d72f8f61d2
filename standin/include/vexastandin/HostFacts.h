#pragma once

#include <map>
#include <string>
#include <vector>

#include "vexastandin/Export.h"

namespace vexa::standin {

/// Facts about a host: the answer by the name of each fact, for example `{"list.dealloc.clearsHandle", "false"}`. An
/// answer is `true` or `false`, a number, or a word. docs/real-host.md lists the facts and their answers.
using HostFacts = std::map<std::string, std::string>;

/// A fact that the stand-in cannot imitate.
struct UnlikeFact {
    std::string name;    ///< for example "string.alloc.isZeroed"
    std::string answer;  ///< the answer of the host
    std::string reason;  ///< why the stand-in answers otherwise
};

/// Returns those of \p facts that the stand-in cannot imitate, in the order of their names. They are:
/// - facts that this version of the stand-in does not know
/// - answers that this version does not know
/// - answers that the stand-in cannot give, unless it gives them anyway
VEXASTANDIN_API std::vector<UnlikeFact> unlikeFacts(const HostFacts& facts);

}  // namespace vexa::standin
