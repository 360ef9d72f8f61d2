#include "options/ColourOption.h"

#include <CLI/CLI.hpp>
#include <string>

#include "terminal/Terminal.h"

namespace vexa::runner {

void addColourOption(CLI::App& command) {
    const auto choose = [](const std::string& when) {
        if (when != "auto") chooseColour(when == "always");
    };
    command.add_option_function<std::string>("--color", choose, "When messages are in colour: auto, always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}).description(""))
        ->type_name("WHEN");
}

}  // namespace vexa::runner
