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

/// One time in an add-on, or in none, and what it leaves open.
struct EntryBooks {
    std::shared_ptr<Entry> entry;
    Scopes scopes;
    StatusRules status;
    bool hadNoMemory = false;  ///< whether the host refused it a string
};

/// What the contract remembers of what happened so far, family by family.
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
    std::set<const AddOnList_s*> identities;  ///< of the add-ons that were ever loaded
    std::vector<EntryBooks> entries;          ///< innermost last; the first is the time spent in no add-on
};

}  // namespace vexa::standin
