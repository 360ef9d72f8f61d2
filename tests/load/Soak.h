#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>

#include "load/Resources.h"

namespace vexa::load {

// The host notes the stacks of calls that open something. The second loop below has stacks of its own.
inline constexpr std::size_t kStacks = 16384;

/// Calls \p operation many times, and expects that the process holds no more at the end than after the first tenth.
/// Prints the growth for each million calls.
/// \param operation  gets a number below \p round, and returns true if all is well. It must depend only on this number,
/// so
///                   that it holds the same at both times, except for \p remembered bytes, and for the stacks.
/// \param times      a multiple of ten rounds
template <class Operation>
void soak(const char* what, long times, const Operation& operation, std::size_t remembered = 0, long round = 1000) {
    ASSERT_EQ(times % (10 * round), 0) << "a tenth must be whole rounds";
    Resources::now();  // makes the allocations that happen only at the first call
    long wrong = 0;
    for (long i = 0; i < times / 10; ++i) wrong += operation(i % round) ? 0 : 1;
    const Resources early = Resources::now();
    for (long i = times / 10; i < times; ++i) wrong += operation(i % round) ? 0 : 1;
    const Resources late = Resources::now();
    const double millions = static_cast<double>(times - times / 10) * 1e-6;
    const auto growth = [&](auto from, auto to) {
        return (static_cast<double>(to) - static_cast<double>(from)) / millions;
    };
    std::printf(
        "%ld %s: resident %ld -> %ld KiB (%+.0f for each million), heap in use %zu -> %zu B (%+.0f), "
        "descriptors %ld -> %ld\n",
        times, what, early.residentKiB, late.residentKiB, growth(early.residentKiB, late.residentKiB), early.heapInUse,
        late.heapInUse, growth(early.heapInUse, late.heapInUse), early.descriptors, late.descriptors);
    EXPECT_EQ(wrong, 0);
    EXPECT_LE(late.residentKiB - early.residentKiB, 1024);
    EXPECT_GE(late.heapInUse, early.heapInUse);
    EXPECT_LE(late.heapInUse, early.heapInUse + kStacks + remembered);
    EXPECT_EQ(late.descriptors, early.descriptors);
}

}  // namespace vexa::load
