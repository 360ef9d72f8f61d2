#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "library/macro/Tokens.h"
#include "support/VirtualSlots.h"

namespace vexa::vexautilutil {

/// A text that is not an option, the message that refuses it, and the tokens from the offending one on.
struct RefusalCase {
    const char* why;
    const char* text;
    const char* refusal;
    std::vector<std::string> rest;
};

/// Expects that each case is refused with its message. `more` are the arguments of the option's constructor after the
/// iterators.
template <class Option, class... More>
void expectRefusals(const std::vector<RefusalCase>& cases, More... more) {
    for (const RefusalCase& c : cases) {
        std::vector<std::string> rest;
        EXPECT_EQ(refusedAs<Option>(c.text, &rest, more...), c.refusal) << c.why;
        EXPECT_EQ(rest, c.rest) << c.why;
    }
}

/// Expects that the virtual operations common to all options have their fixed slots.
template <class Option>
void expectOptionSlots() {
    EXPECT_EQ(tests::slotOf(&Option::perform), 0);
    EXPECT_EQ(tests::slotOf(&Option::name), 1);
    EXPECT_EQ(tests::slotOf(&Option::isDefaultValue), 2);
    EXPECT_EQ(tests::slotOf(&Option::toString), 3);
    EXPECT_EQ(tests::slotOf(&Option::value), 6) << "after the destructor's two slots";
}

}  // namespace vexa::vexautilutil
