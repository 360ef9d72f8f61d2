#include "commands/Commands.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "commands/manual/Forms.h"

namespace vexa::runner {
namespace {

struct Form {
    const char* name;
    std::string (*print)(const Command& program);
};

constexpr Form kForms[] = {
    {"man", manPage}, {"bash", bashCompletion}, {"zsh", zshCompletion}, {"fish", fishCompletion}};

std::vector<std::string> formNames() {
    std::vector<std::string> names;
    for (const Form& form : kForms) names.emplace_back(form.name);
    return names;
}

ExitStatus_e printManual(const Command& program, const std::string& name) {
    for (const Form& form : kForms) {
        if (name == form.name) std::fputs(form.print(program).c_str(), stdout);
    }
    return ExitStatus_e::AllWell;
}

}  // namespace

Command manualCommand(const Command& program) {
    const auto form = std::make_shared<std::string>();
    Command command{"manual", "Print the manual"};
    command.isHidden = true;
    command.add(argument("FORM", "man, or a shell for its completion: bash, zsh or fish", form.get())
                    .require()
                    .allow(formNames()));
    command.run = [&program, form] { return printManual(program, *form); };
    return command;
}

}  // namespace vexa::runner
