#include "language/DescribedExamples.h"

#include <cstddef>

#include "language/LineCheck.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

void addMistakes(std::vector<std::string>& all, const std::string& pointer, const std::vector<std::string>& texts,
                 const AddOnDescription& addOn) {
    for (std::size_t i = 0; i != texts.size(); ++i) {
        for (const Diagnostic& mistake : checkCommand(texts[i], addOn)) {
            if (mistake.severity != standin::Severity_e::Error) continue;
            all.push_back(pointer + std::to_string(i) + ": " + mistake.message);
        }
    }
}

}  // namespace

std::vector<std::string> wrongExamples(const AddOnDescription& addOn) {
    std::vector<std::string> all;
    for (std::size_t i = 0; i != addOn.commands.size(); ++i) {
        const std::string pointer = "/commands/" + std::to_string(i);
        addMistakes(all, pointer + "/before/", addOn.commands[i].before, addOn);
        addMistakes(all, pointer + "/examples/", addOn.commands[i].examples, addOn);
    }
    return all;
}

bool areExamplesRight(const AddOnDescription& addOn, const std::string& file) {
    const std::vector<std::string> mistakes = wrongExamples(addOn);
    for (const std::string& mistake : mistakes) tell(file, mistake);
    return mistakes.empty();
}

}  // namespace vexa::runner
