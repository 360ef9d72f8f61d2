// The operations that call the host: progress, style, mutex.
#include "AllocationFaults.h"
#include "SparingHost.h"
#include "support/GlobalLocale.h"
#include "vexa/ui/TaskProgress.h"
#include "vexautilutil/Mutex.h"
#include "vexautilutil/StyleValue.h"
#include "vexautilutil/TaskProgressBar.h"

namespace vexa::tests {
namespace {

using namespace vexautilutil;
using standin::StyleValue;

const std::string kLong = "a text of more than fifteen characters";

template <class Make>
void makesProgress(Attempt& a, const Make& make) {
    const SparingHost host;
    a.makes(make, [](const auto& progress) { return progress->isInterrupted() ? "interrupted" : "made"; });
}

template <class Change>
void drives(Attempt& a, const Change& change) {
    const SparingHost host;
    const auto progress = createTaskProgressBar(10);
    progress->start("a task");
    a.changes([&] { change(*progress); }, [&] { return host.statusLine().text; });
}

// The outcome has all outputs of the query.
void asks(Attempt& a, const char* keyword, const StyleValue& value) {
    SparingHost host;
    host.setStyle({"Group", keyword}, value);
    std::vector<std::string> path = {"Group", keyword};
    ResultType_e type = ResultType_None;
    auto code = GetValueReturnCode_Ok;
    std::string text = "before";
    a.changes([&] { getValueAsString(path, 1, 2, type, code, text); },
              [&] { return std::to_string(type) + ' ' + std::to_string(code) + ' ' + text; });
}

void asksGrouped(Attempt& a, const char* keyword, const StyleValue& value) {
    const GlobalLocale locale(new GroupedNumbers);  // makes the library use a stream
    asks(a, keyword, value);
}

toolbox::Set someSet() {
    toolbox::Set set;
    for (int i = 0; i < 20; ++i) set.insert(2 * i);
    return set;
}

// A missing text beside the bar does not make a task fail.
const std::vector<std::string> kNoText = {"a task", kUnharmed};

// If the host has no memory, it refuses the query. If the library has none for the text, it does not free the argument
// list and the host's copies of its arguments.
const std::vector<std::string> kNoAnswer = {"4 3 before", "4 2 before", "bad_alloc"};
constexpr long kArgList = 12;

// The same for a second query. If the host refuses that one, the result is the text `nothing`.
std::vector<std::string> noAnswer(ResultType_e type, const std::string& nothing) {
    std::vector<std::string> outcomes = kNoAnswer;
    for (const char* code : {" 2 ", " 3 "}) outcomes.push_back(std::to_string(type) + code + nothing);
    return outcomes;
}

}  // namespace

std::vector<Operation> hostOperations() {
    return {
        {"createTaskProgressBar", [](Attempt& a) { makesProgress(a, [] { return createTaskProgressBar(2); }); }},
        {"createNoopTaskProgressBar", [](Attempt& a) { makesProgress(a, [] { return createNoopTaskProgressBar(); }); }},
        {"start, of a progress bar", [](Attempt& a) { drives(a, [](auto& p) { p.start(kLong); }); }, kNoText},
        {"setStatusMessage, of a progress bar",
         [](Attempt& a) { drives(a, [](auto& p) { p.setStatusMessage(kLong); }); }, kNoText},
        {"Mutex",
         [](Attempt& a) {
             const SparingHost host;
             a.makes([] { return Mutex(); }, [](const auto&) { return "made"; });
         },
         {"bad_alloc"},
         0},
        {"getValueAsString, of a double", [](Attempt& a) { asks(a, "Thickness", 0.5); }, kNoAnswer, kArgList},
        {"getValueAsString, of a double, grouped", [](Attempt& a) { asksGrouped(a, "Thickness", -1.23456e-300); },
         kNoAnswer, kArgList},
        {"getValueAsString, of an integer", [](Attempt& a) { asks(a, "Count", INT64_MIN); },
         noAnswer(ResultType_Integer, "0"), kArgList},
        {"getValueAsString, of a text", [](Attempt& a) { asks(a, "Name", kLong); }, noAnswer(ResultType_String, ""),
         kArgList},
        {"getValueAsString, of a set", [](Attempt& a) { asks(a, "ActiveFieldMaps", someSet()); },
         noAnswer(ResultType_Set, "[]"), kArgList},
    };
}

}  // namespace vexa::tests
