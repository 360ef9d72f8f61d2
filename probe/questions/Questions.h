/// \file
/// The questions that one command can ask. Each file has those about one part of the host. A question releases all that
/// it took from the host, whatever the host answers.
#pragma once

#include <vector>

#include "facts/Facts.h"
#include "probe/questions/Answer.h"
#include "probe/questions/Circumstances.h"

namespace vexa::probe {

/// A question, and how it is asked.
struct Question {
    facts::Fact fact;
    /// \throws Unanswerable if the question has no answer in the circumstances.
    Answer (*ask)(const Circumstances& circumstances);
};

std::vector<Question> commandQuestions();
std::vector<Question> listQuestions();
std::vector<Question> recordingQuestions();
std::vector<Question> scopeQuestions();
std::vector<Question> setQuestions();
std::vector<Question> statusQuestions();
std::vector<Question> stringQuestions();
std::vector<Question> styleQuestions();

}  // namespace vexa::probe
