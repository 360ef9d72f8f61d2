// The stand-in answers as the facts about another host say: the probe, asked again, gets those facts.

#include <algorithm>
#include <vector>

#include "ProbedHost.h"
#include "facts/Facts.h"

namespace vexa::probe {
namespace {

using facts::FactInfo;
using facts::Kind_e;

// All answers but the stand-in's own that it can give. Ok for a value that is not there is left out for most codes.
std::vector<std::string> otherAnswersTo(const FactInfo& info) {
    std::vector<std::string> all;
    const std::string words = info.limit;
    switch (info.kind) {
        case Kind_e::Truth: all = {"true", "false"}; break;
        case Kind_e::Code: all = {"Ok", "OtherType", "UnknownPath", "NotAvailable"}; break;
        case Kind_e::Count: all = {"0", "1", "7"}; break;
        case Kind_e::Word:
            for (std::size_t begin = 0; begin < words.size();) {
                const std::size_t end = std::min(words.find('|', begin), words.size());
                all.push_back(words.substr(begin, end - begin));
                begin = end + 1;
            }
            break;
        case Kind_e::Fixed: break;
    }
    all.erase(std::remove(all.begin(), all.end(), info.standIn), all.end());
    return all;
}

class Imitation : public ProbedHost {
protected:
    // A facts file in which only one fact has no answer, so that the probe asks nothing else.
    void writeAllBut(const std::string& name) const {
        Json facts = Json::object();
        for (const FactInfo& info : facts::kFacts) {
            facts[info.name] = {{"question", ""}, {"answer", info.name == name ? Json(nullptr) : Json("known")}};
        }
        folder.write("facts.json", Json{{"schema", 1}, {"facts", facts}}.dump());
    }

    // What a host that answers like \p facts says about the fact.
    Json answerOf(const standin::HostFacts& facts, const std::string& name) {
        standin::Host imitating;
        imitating.setStyle({"VEXAPROBE", "SETTING", "SIZE"}, 0, 0, 0.25);
        imitating.answerLike(facts);
        const bool isAboutRecording = name.rfind("record.", 0) == 0 && name != "record.whileNotRecording";
        if (isAboutRecording) imitating.setRecording(true);
        imitating.loadAddOn(VEXA_PROBE);
        imitating.loadAddOn(VEXA_PROBE_SECOND);
        writeAllBut(name);
        const std::string options = "FILE = '" + file() + '\'';
        const std::string ask = "WRITE " + options + " RISKY = TRUE SETTING = 'VEXAPROBE SETTING SIZE'";
        EXPECT_EQ(imitating.run("VEXAPROBE", ask).error, "");
        imitating.run("VEXAPROBE2", "WATCH " + options);
        if (name == "macro.goesOnAfterFailure") {
            imitating.run("VEXAPROBE", "FAIL");
            if (imitating.goesOnAfterFailure()) imitating.run("VEXAPROBE", "NOTE TEXT = 'later'");
        }
        imitating.unloadAddOns();
        return answer(name);
    }
};

TEST_F(Imitation, GivesEveryOtherAnswerToEachQuestion) {
    std::size_t tried = 0;
    for (const FactInfo& info : facts::kFacts) {
        for (const std::string& other : otherAnswersTo(info)) {
            EXPECT_EQ(textOf(answerOf({{info.name, other}}, info.name)), other) << info.name;
            ++tried;
        }
    }
    EXPECT_GT(tried, facts::kFactCount);
}

TEST_F(Imitation, LeavesTheAnswersToOtherQuestionsAlone) {
    for (const FactInfo& info : facts::kFacts) {
        const std::string name = info.name;
        if (name == "style.unknownPath" || info.kind == Kind_e::Fixed || name.rfind("record", 0) == 0) continue;
        if (name.rfind("shutdown", 0) == 0 || name.rfind("macro", 0) == 0) continue;
        const Json answer = answerOf({{"style.unknownPath", "NotAvailable"}}, name);
        EXPECT_EQ(textOf(answer), info.standIn) << info.name;
    }
}

}  // namespace
}  // namespace vexa::probe
