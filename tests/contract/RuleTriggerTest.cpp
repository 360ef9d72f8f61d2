// Tests the calls that the table of rules lists for each rule.

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "standin/EveryFunction.h"
#include "vexastandin/Finding.h"
#include "vexastandin/Host.h"

namespace vexa::standin {
namespace {

bool hasFunction(const RuleTrigger& trigger, const std::string& function) {
    return std::find(trigger.functions.begin(), trigger.functions.end(), function) != trigger.functions.end();
}

template <class Handle>
void freeNull(void (*free)(Handle**)) {
    Handle* none = nullptr;
    free(&none);
}

// The rules that a call with nothing but null breaks, in a host where nothing has happened before.
std::set<std::string> rulesBrokenBy(const HarmlessCall& call) {
    Host host;
    call.call();
    std::set<std::string> rules;
    for (const Finding& finding : host.violations()) rules.insert(finding.rule);
    return rules;
}

// Calls that free a null handle; those of kEveryFunction have no address of a handle.
constexpr HarmlessCall kFreesNull[] = {
    {"VexaUtilThreadMutexDealloc", [] { freeNull(VexaUtilThreadMutexDealloc); }},
    {"VexaUtilStringDealloc", [] { freeNull(VexaUtilStringDealloc); }},
    {"VexaUtilArgListDealloc", [] { freeNull(VexaUtilArgListDealloc); }},
    {"VexaUtilSetDealloc", [] { freeNull(VexaUtilSetDealloc); }},
};

std::set<std::string> functionsThatBreak(const std::string& rule) {
    std::set<std::string> functions;
    const auto addIfItBreaks = [&](const HarmlessCall& call) {
        if (rulesBrokenBy(call).count(rule) != 0) functions.insert(call.function);
    };
    std::for_each(std::begin(kEveryFunction), std::end(kEveryFunction), addIfItBreaks);
    std::for_each(std::begin(kFreesNull), std::end(kFreesNull), addIfItBreaks);
    return functions;
}

TEST(RuleTrigger, NamesEachFunctionThatBreaksTheRule) {
    for (const HarmlessCall& call : kEveryFunction) {
        for (const std::string& rule : rulesBrokenBy(call)) {
            EXPECT_TRUE(hasFunction(*findTrigger(rule), call.function)) << rule << ": " << call.function;
        }
    }
}

TEST(RuleTrigger, NamesExactlyTheFunctionsThatBreakARuleAboutNull) {
    for (const char* const rule : {"null-handle", "null-address"}) {
        const std::vector<const char*>& functions = findTrigger(rule)->functions;
        EXPECT_EQ(std::set<std::string>(functions.begin(), functions.end()), functionsThatBreak(rule)) << rule;
    }
}

TEST(RuleTrigger, HasFunctionsIfItIsACall) {
    for (const Rule& rule : rules()) {
        const RuleTrigger& trigger = *findTrigger(rule.name);
        EXPECT_EQ(trigger.functions.empty(), trigger.kind != RuleTrigger_e::Call) << rule.name;
    }
}

TEST(RuleTrigger, IsNullForARuleThatDoesNotExist) { EXPECT_EQ(findTrigger("no-such-rule"), nullptr); }

}  // namespace
}  // namespace vexa::standin
