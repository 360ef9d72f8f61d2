#pragma once

#include <memory>
#include <set>
#include <vector>

#include "contract/ArgumentNames.h"
#include "contract/FindingLog.h"
#include "contract/HandleLedger.h"
#include "contract/HostStrings.h"
#include "contract/Moment.h"
#include "contract/MutexHolds.h"
#include "contract/Scopes.h"
#include "contract/StatusRules.h"
#include "contract/StringRules.h"
#include "contract/ThreadRules.h"

namespace vexa::standin {

/// The open scopes and other state of one entry into an add-on, or of the time outside all add-ons.
struct EntryBooks {
    std::shared_ptr<Entry> entry;
    Scopes scopes;
    StatusRules status;
    bool hadNoMemory = false;  ///< true if the host had no memory for a string
};

/// The state of the contract, with one part for each family of rules.
struct Books {
    explicit Books(const HostStringsInterface& hostStrings) : strings(stringLedger, hostStrings) {}
    Books(const Books&) = delete;
    Books& operator=(const Books&) = delete;
    ~Books() = default;

    EntryBooks& current() { return entries.back(); }

    FindingLog findings;
    HandleLedger mutexLedger{{"mutex", "a mutex", "mutexes", "leaked-mutex"}};
    HandleLedger setLedger{{"set", "a set", "sets", "leaked-set"}};
    HandleLedger argListLedger{{"arglist", "an argument list", "argument lists", "leaked-arglist"}};
    HandleLedger stringLedger{{"string", "a host string", "host strings", "leaked-string"}};
    MutexHolds holds{mutexLedger};
    ArgumentNames arguments{argListLedger};
    StringRules strings;
    ThreadRules threads;
    std::set<const AddOnList_s*> identities;  ///< the identities of all add-ons loaded so far
    std::vector<EntryBooks> entries;          ///< the innermost is last; the first is the time outside all add-ons
};

}  // namespace vexa::standin
