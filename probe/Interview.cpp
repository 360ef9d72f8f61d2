#include "probe/Interview.h"

#include <iterator>
#include <string>
#include <vector>

#include "probe/questions/Questions.h"

namespace vexa::probe {
namespace {

using facts::Fact;

constexpr const char* kHostEnded = "the host ended, or did not return, when this was asked";
constexpr const char* kNeedsRisk = "asked only with RISKY = TRUE";

// How each fact is asked; null for those that the probe finds out in another way.
std::vector<Answer (*)(const Circumstances&)> allQuestions() {
    std::vector<Answer (*)(const Circumstances&)> all(facts::kFactCount, nullptr);
    for (const auto& some : {styleQuestions(), listQuestions(), setQuestions(), stringQuestions(), scopeQuestions(),
                             statusQuestions(), recordingQuestions(), commandQuestions()}) {
        for (const Question& question : some) all[static_cast<std::size_t>(question.fact)] = question.ask;
    }
    return all;
}

bool hasEndedHost(const Answer& answer) {
    const auto* const none = std::get_if<NoAnswer>(&answer);
    return none != nullptr && none->reason == kHostEnded;
}

Answer answerTo(const Circumstances& now, Answer (*ask)(const Circumstances&)) {
    try {
        return ask(now);
    } catch (const Unanswerable& reason) {
        return NoAnswer{reason.what()};
    }
}

}  // namespace

void interview(FactsFile& file, const Circumstances& circumstances, bool isRisky) {
    const auto questions = allQuestions();
    for (std::size_t i = 0; i != questions.size(); ++i) {
        const auto fact = static_cast<Fact>(i);
        if (questions[i] == nullptr || file.isAnswered(fact) || hasEndedHost(file.answerTo(fact))) continue;
        const bool hasRisk = facts::kFacts[i].risk != facts::Risk_e::None;
        if (hasRisk && !isRisky) {
            file.set(fact, NoAnswer{kNeedsRisk});
            continue;
        }
        if (hasRisk) {
            file.set(fact, NoAnswer{kHostEnded});
            file.write();
        }
        file.set(fact, answerTo(circumstances, questions[i]));
    }
    file.write();
}

}  // namespace vexa::probe
