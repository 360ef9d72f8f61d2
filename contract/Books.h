#pragma once

#include <algorithm>
#include <cstddef>
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
#include "vexa/VexaUtil.h"

namespace vexa::standin {

/// What is open in one entry into an add-on, or outside all add-ons.
struct EntryBooks {
    std::shared_ptr<Entry> entry;
    Scopes scopes;
    StatusRules status;
    bool hadNoMemory = false;  ///< whether the host had no memory for a string
};

/// Everything that the contract remembers, one part for each family of rules.
struct Books {
    explicit Books(const HostStringsInterface& hostStrings) : strings(stringLedger, hostStrings) {}
    Books(const Books&) = delete;
    Books& operator=(const Books&) = delete;
    ~Books() = default;

    /// The books of the entry in which \p now is; those of the time outside all add-ons if that entry is over.
    EntryBooks& of(const Moment& now) {
        const auto found = std::find_if(entries.rbegin(), entries.rend(),
                                        [&](const EntryBooks& books) { return books.entry == now.entry; });
        return found == entries.rend() ? entries.front() : *found;
    }

    /// The books of the entry that \p thread began last; null if the thread is in no add-on.
    EntryBooks* entryOf(std::size_t thread) {
        const auto found = std::find_if(entries.rbegin(), entries.rend(),
                                        [=](const EntryBooks& books) { return books.entry->thread == thread; });
        return found == entries.rend() ? nullptr : &*found;
    }

    FindingLog findings;
    HandleLedger mutexLedger{{"mutex", "a mutex", "mutexes", "leaked-mutex"}};
    HandleLedger setLedger{{"set", "a set", "sets", "leaked-set"}};
    HandleLedger argListLedger{{"arglist", "an argument list", "argument lists", "leaked-arglist"}};
    HandleLedger stringLedger{{"string", "a host string", "host strings", "leaked-string"}};
    MutexHolds holds{mutexLedger};
    ArgumentNames arguments{argListLedger};
    StringRules strings;
    ThreadRules threads;
    std::set<const AddOnList_s*> identities;  ///< of all add-ons loaded so far
    std::vector<EntryBooks> entries;          ///< of all threads, the last one is the newest; the first stands for
                                              ///< the time outside all add-ons
};

/// The ledger for handles of a type.
inline HandleLedger& ledgerOf(Books& books, const ThreadMutex_s*) { return books.mutexLedger; }
inline HandleLedger& ledgerOf(Books& books, const ArgList_s*) { return books.argListLedger; }
inline HandleLedger& ledgerOf(Books& books, const Set_s*) { return books.setLedger; }
inline HandleLedger& ledgerOf(Books& books, const char*) { return books.stringLedger; }

}  // namespace vexa::standin
