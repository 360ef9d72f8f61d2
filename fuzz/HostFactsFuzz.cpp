// Reads facts files. A host that answers as an accepted file says must survive calls, and name what it cannot imitate.
// A refusal must have a place in the file and a reason of one line.

#include <cstdint>

#include "Fuzz.h"
#include "formats/HostFactsFile.h"
#include "formats/JsonText.h"
#include "vexa/VexaUtil.h"
#include "vexastandin/Host.h"

namespace vexa::fuzz {
namespace {

bool isOneLine(const std::string& text) { return !text.empty() && text.find_first_of("\r\n") == std::string::npos; }

void requireReason(const runner::JsonError& error, const std::string& text) {
    require(error.at <= text.size(), "what is wrong lies in the file", error.what());
    require(isOneLine(error.what()), "a reason is one line", error.what());
}

// Calls the functions that answer differently in other hosts, with arguments at the limits.
void callHost() {
    ArgList_s* list = VexaUtilArgListAlloc();
    VexaUtilArgListAppendString(list, "", "");
    VexaUtilArgListAppendString(list, "P1", "A");
    VexaUtilArgListAppendString(list, "p1", "A");
    double number = 0;
    VexaUtilArgListAppendDoublePtr(list, "DValue", &number);
    VexaUtilStyleGetLowLevelX(list);
    VexaUtilArgListDealloc(&list);
    Set_s* set = VexaUtilSetAlloc();
    VexaUtilSetInsert(set, INT64_MAX, INT64_MIN);
    VexaUtilSetInsert(set, INT64_MIN, INT64_MAX);
    std::int64_t first = 0;
    std::int64_t last = 0;
    VexaUtilSetNextRange(set, INT64_MIN, &first, &last);
    VexaUtilSetDealloc(&set);
    char* string = VexaUtilStringAlloc(INT32_MIN, nullptr);
    if (string != nullptr) VexaUtilStringDealloc(&string);
    VexaUtilStatusCheckPercentDone(INT32_MAX);
    VexaUtilMacroRecordExtCommand("ONE", "");
    VexaUtilDataSetAddJournalCommand("ONE", "\n", nullptr);
}

void requireNamed(const standin::HostFacts& facts, const std::vector<standin::UnlikeFact>& unlike) {
    for (const standin::UnlikeFact& fact : unlike) {
        require(facts.count(fact.name) != 0, "only facts of the file are named", fact.name);
        require(!fact.reason.empty(), "what is not imitated has a reason", fact.name);
    }
}

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    const std::string text = textOf(data, size);
    try {
        const vexa::standin::HostFacts facts = vexa::runner::answersOf(vexa::runner::parseHostFacts(text));
        vexa::standin::Host host;
        host.setStyle({"A", "B"}, 0.5);
        requireNamed(facts, host.answerLike(facts));
        callHost();
    } catch (const vexa::runner::JsonError& error) {
        requireReason(error, text);
    }
    return 0;
}
