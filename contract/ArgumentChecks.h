/// \file
/// Checks that depend only on the type of an argument or a result.
#pragma once

#include <cstddef>
#include <string>
#include <type_traits>

#include "contract/Books.h"
#include "contract/OptionalTexts.h"
#include "vexa/VexaUtil.h"

namespace vexa::standin {

/// Reports a null address.
/// \return whether \p address is not null.
inline bool checkAddress(Books& books, const Moment& now, const void* address) {
    if (address == nullptr) {
        books.findings.add("null-address", std::string(nameOf(*now.function)) + " was given a null address", now);
    }
    return address != nullptr;
}

template <class Number, std::enable_if_t<std::is_arithmetic_v<Number>, int> = 0>
void checkArgument(Books&, const Moment&, Number) {}

inline void checkArgument(Books&, const Moment&, OptionalText) {}

inline void checkArgument(Books& books, const Moment& now, const char* text) { checkAddress(books, now, text); }

template <class Number, std::enable_if_t<std::is_arithmetic_v<Number> && !std::is_same_v<Number, char>, int> = 0>
void checkArgument(Books& books, const Moment& now, Number* result) {
    checkAddress(books, now, result);
}

/// VexaUtilLockStart() checks the identity itself.
inline void checkArgument(Books&, const Moment&, const AddOnList_s*) {}

inline void checkArgument(Books& books, const Moment& now, const ThreadMutex_s* mutex) {
    books.mutexLedger.checkUse(mutex, now, books.findings);
}

inline void checkArgument(Books& books, const Moment& now, const ArgList_s* argList) {
    books.argListLedger.checkUse(argList, now, books.findings);
}

inline void checkArgument(Books& books, const Moment& now, const Set_s* set) {
    books.setLedger.checkUse(set, now, books.findings);
}

/// The function changes the set: its type is not const.
inline void checkArgument(Books& books, const Moment& now, Set_s* set) {
    books.setLedger.checkChange(set, now, books.findings);
}

// A function that takes the address of a handle frees that handle.

inline void checkArgument(Books& books, const Moment& now, ThreadMutex_s** mutex) {
    if (!checkAddress(books, now, mutex)) return;
    if (!books.mutexLedger.checkFree(*mutex, now, books.findings)) return;
    books.holds.freeBegan(*mutex, now, books.findings);
    books.mutexLedger.freed(*mutex, now);
}

inline void checkArgument(Books& books, const Moment& now, ArgList_s** argList) {
    if (!checkAddress(books, now, argList)) return;
    if (!books.argListLedger.checkFree(*argList, now, books.findings)) return;
    books.arguments.forget(*argList);
    books.argListLedger.freed(*argList, now);
}

inline void checkArgument(Books& books, const Moment& now, Set_s** set) {
    if (!checkAddress(books, now, set)) return;
    if (books.setLedger.checkFree(*set, now, books.findings)) books.setLedger.freed(*set, now);
}

inline void checkArgument(Books& books, const Moment& now, char** string) {
    if (!checkAddress(books, now, string)) return;
    if (!books.stringLedger.checkFree(*string, now, books.findings)) return;
    books.strings.freeBegan(*string, now, books.findings);
    books.stringLedger.freed(*string, now);
}

/// Enters the handle that a function returned.
/// \param number which of its kind the handle is, counted from 1.
template <class Result>
void checkResult(Books& books, const Moment& now, Result result, std::size_t number) {
    if constexpr (std::is_pointer_v<Result>) {
        if (result != nullptr) ledgerOf(books, result).allocated(result, number, now);
    }
}

}  // namespace vexa::standin
