/// \file
/// How the calls of each host function are checked. ArgumentChecks.h has the checks that depend on types only.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

#include "contract/ArgumentChecks.h"
#include "contract/Books.h"
#include "contract/Contract.h"
#include "contract/HostFunctionTable.h"
#include "contract/MacroLine.h"
#include "contract/OptionalTexts.h"

namespace vexa::standin {

/// A function that needs no checks beyond those of the types of its arguments.
struct NoCheck {
    template <class... Arguments>
    static void began(Books&, const Moment&, const Arguments&...) {}
    /// The last argument is the result, if there is one.
    template <class... Arguments>
    static void ended(Books&, const Moment&, const Arguments&...) {}
};

/// How the calls of \p function are checked. A call of a function without a Check does not compile.
template <HostFunction function>
struct Check;

// ---- Scopes

template <Scope_e scope>
struct BeginsScope : NoCheck {
    static void ended(Books& books, const Moment& now) { books.of(now).scopes.begin(scope, now); }
};

template <Scope_e scope>
struct EndsScope : NoCheck {
    static void began(Books& books, const Moment& now) { books.of(now).scopes.end(scope, now, books.findings); }
};

template <>
struct Check<HostFunction::VexaUtilLockStart> {
    static void began(Books& books, const Moment& now, const AddOnList_s* identity) {
        const bool isKnown = books.identities.count(identity) != 0;
        if (identity == nullptr) {
            books.findings.add("null-handle", "VexaUtilLockStart was given a null identity", now);
        } else if (!isKnown && !now.entry->addOnId.empty()) {
            books.findings.add("foreign-handle", "VexaUtilLockStart was given an identity that belongs to no add-on",
                               now);
        }
    }
    static void ended(Books& books, const Moment& now, const AddOnList_s* identity) {
        books.of(now).scopes.begin(Scope_e::Lock, now, identity);
    }
};
template <>
struct Check<HostFunction::VexaUtilLockFinish> : NoCheck {
    static void began(Books& books, const Moment& now, const AddOnList_s* identity) {
        books.of(now).scopes.end(Scope_e::Lock, now, books.findings, identity);
    }
};
template <>
struct Check<HostFunction::VexaUtilAuxDataBeginAssign> : BeginsScope<Scope_e::AuxData> {};
template <>
struct Check<HostFunction::VexaUtilAuxDataEndAssign> : EndsScope<Scope_e::AuxData> {};
template <>
struct Check<HostFunction::VexaUtilDataSetSuspendMarking> {
    static void began(Books& books, const Moment& now, VexaBoolean suspend) {
        if (suspend == 0) EndsScope<Scope_e::Marking>::began(books, now);
    }
    static void ended(Books& books, const Moment& now, VexaBoolean suspend) {
        if (suspend != 0) BeginsScope<Scope_e::Marking>::ended(books, now);
    }
};
template <>
struct Check<HostFunction::VexaUtilZoneSolutionTimeModificationBegin> : BeginsScope<Scope_e::SolutionTime> {};
template <>
struct Check<HostFunction::VexaUtilZoneSolutionTimeModificationEnd> : EndsScope<Scope_e::SolutionTime> {};

// ---- Mutexes

template <>
struct Check<HostFunction::VexaUtilThreadMutexAlloc> : NoCheck {};
template <>
struct Check<HostFunction::VexaUtilThreadMutexDealloc> : NoCheck {};
template <>
struct Check<HostFunction::VexaUtilThreadMutexLock> {
    static void began(Books& books, const Moment& now, const ThreadMutex_s* mutex) {
        books.holds.lockBegan(mutex, now, books.findings);
    }
    static void ended(Books& books, const Moment& now, const ThreadMutex_s* mutex) {
        books.holds.lockEnded(mutex, now);
    }
};
template <>
struct Check<HostFunction::VexaUtilThreadMutexUnlock> : NoCheck {
    static void began(Books& books, const Moment& now, const ThreadMutex_s* mutex) {
        books.holds.unlockBegan(mutex, now, books.findings);
    }
};

// ---- The status line

template <>
struct Check<HostFunction::VexaUtilStatusStartPercentDone> : NoCheck {
    template <class... Arguments>
    static void ended(Books& books, const Moment& now, const Arguments&...) {
        books.of(now).status.started(now, books.findings);
    }
};
template <>
struct Check<HostFunction::VexaUtilStatusCheckPercentDone> : NoCheck {
    static void began(Books& books, const Moment& now, int percent) {
        books.of(now).status.percentShown(percent, now, books.findings);
    }
};
template <>
struct Check<HostFunction::VexaUtilStatusSetPercentDoneText> : NoCheck {
    template <class Text>
    static void began(Books& books, const Moment& now, const Text&) {
        books.of(now).status.textShown(now, books.findings);
    }
};
template <>
struct Check<HostFunction::VexaUtilStatusFinishPercentDone> : NoCheck {
    static void began(Books& books, const Moment& now) { books.of(now).status.finished(now, books.findings); }
};

// ---- Questions and records

template <>
struct Check<HostFunction::VexaUtilMacroIsBatchModeActive> : NoCheck {};
template <>
struct Check<HostFunction::VexaUtilMacroIsRecordingActive> : NoCheck {};
template <>
struct Check<HostFunction::VexaUtilStateIsProcessingJournal> : NoCheck {};
template <>
struct Check<HostFunction::VexaUtilStateIsProcessingLayout> : NoCheck {};
template <>
struct Check<HostFunction::VexaUtilMacroRecordExtCommand> : NoCheck {
    static void began(Books& books, const Moment& now, const char* addOnId, const char* command) {
        if (addOnId == nullptr || command == nullptr) return;
        const std::string_view reason = whyNoMacroLine(addOnId, command);
        if (reason.empty()) return;
        books.findings.add(
            "recording-not-replayable",
            std::string(nameOf(*now.function)) +
                " was given a command that does not fit on one line of a macro file: " + std::string(reason),
            now);
    }
};
template <>
struct Check<HostFunction::VexaUtilDataSetAddJournalCommand> : NoCheck {
    static void began(Books& books, const Moment& now, const char* addOnId, const char* command, OptionalText) {
        Check<HostFunction::VexaUtilMacroRecordExtCommand>::began(books, now, addOnId, command);
    }
};
template <>
struct Check<HostFunction::VexaUtilDialogErrMsg> : NoCheck {};

// ---- Strings

template <>
struct Check<HostFunction::VexaUtilStringAlloc> : NoCheck {
    template <class Purpose>
    static void ended(Books& books, const Moment& now, int, const Purpose&, const char* string) {
        if (string == nullptr) books.of(now).hadNoMemory = true;
    }
};
template <>
struct Check<HostFunction::VexaUtilStringDealloc> : NoCheck {};

// ---- Argument lists

template <ArgumentKind_e kind>
struct Appends : NoCheck {
    // A null value has already been reported. It counts as appended, so that the argument is not reported as missing,
    // too.
    template <class Value>
    static void ended(Books& books, const Moment& now, const ArgList_s* argList, const char* name, const Value& value,
                      VexaBoolean isAppended) {
        bool isNull = false;
        const void* address = nullptr;
        if constexpr (std::is_pointer_v<Value>) isNull = value == nullptr;
        if constexpr (kind == ArgumentKind_e::ParamAddress) address = value;
        const bool counts = isAppended != 0 || isNull;
        books.arguments.appended(argList, name, kind, address, counts, now, books.findings);
    }
};

template <>
struct Check<HostFunction::VexaUtilArgListAlloc> : NoCheck {};
template <>
struct Check<HostFunction::VexaUtilArgListDealloc> : NoCheck {};
template <>
struct Check<HostFunction::VexaUtilArgListClear> : NoCheck {
    static void began(Books& books, const Moment&, const ArgList_s* argList) { books.arguments.forget(argList); }
};
template <>
struct Check<HostFunction::VexaUtilArgListAppendString> : Appends<ArgumentKind_e::String> {};
template <>
struct Check<HostFunction::VexaUtilArgListAppendInt> : Appends<ArgumentKind_e::Integer> {};
template <>
struct Check<HostFunction::VexaUtilArgListAppendDoublePtr> : Appends<ArgumentKind_e::DoubleAddress> {};
template <>
struct Check<HostFunction::VexaUtilArgListAppendArbParamPtr> : Appends<ArgumentKind_e::ParamAddress> {};
template <>
struct Check<HostFunction::VexaUtilStyleGetLowLevelX> : NoCheck {
    static void began(Books& books, const Moment& now, const ArgList_s* argList) {
        books.arguments.queried(argList, now, books.findings);
    }
};

// ---- Sets

template <>
struct Check<HostFunction::VexaUtilSetAlloc> : NoCheck {};
template <>
struct Check<HostFunction::VexaUtilSetDealloc> : NoCheck {};
template <>
struct Check<HostFunction::VexaUtilSetInsert> : NoCheck {};
template <>
struct Check<HostFunction::VexaUtilSetNextRange> : NoCheck {};

// ---- What a host calls

/// Checks a call that begins. A host calls this before it does what the function is to do.
/// \param call the number of the call, counted from 1.
template <HostFunction function, class... Arguments>
void checkCall(Contract& contract, std::size_t call, const Arguments&... arguments) {
    contract.check(call, function, [&](Books& books, const Moment& now) {
        ThreadRules::callBegan(now, books.findings);
        withOptionalText<function>(
            [&](const auto&... declared) {
                (checkArgument(books, now, declared), ...);
                Check<function>::began(books, now, declared...);
            },
            arguments...);
    });
}

/// Enters the return of a call of a function without a result. The parameters are those of checkCall().
template <HostFunction function, class... Arguments>
void checkReturn(Contract& contract, std::size_t call, const Arguments&... arguments) {
    contract.check(call, function, [&](Books& books, const Moment& now) {
        withOptionalText<function>([&](const auto&... declared) { Check<function>::ended(books, now, declared...); },
                                   arguments...);
    });
}

/// What a call returned.
template <class Result>
struct Returned {
    Result result;
    std::size_t number;  ///< if the result is a handle: which of its kind it is, counted from 1
};

/// Enters the return of a call of a function with a result. The other parameters are those of checkCall().
template <HostFunction function, class Result, class... Arguments>
void checkReturn(Contract& contract, std::size_t call, Returned<Result> returned, const Arguments&... arguments) {
    contract.check(call, function, [&](Books& books, const Moment& now) {
        checkResult(books, now, returned.result, returned.number);
        withOptionalText<function>(
            [&](const auto&... declared) { Check<function>::ended(books, now, declared..., returned.result); },
            arguments...);
    });
}

}  // namespace vexa::standin
