#pragma once

#include <string>
#include <utility>
#include <vector>

#include "PtyProgram.h"
#include "RunnerTest.h"
#include "TerminalScreen.h"

namespace vexa::e2e {

using Rows = std::vector<std::string>;

/// A test of vexa-standin in a terminal, with the add-on PROGRESS.
class TerminalTest : public RunnerTest {
protected:
    static constexpr unsigned short kColumns = 80;
    /// A terminal that can do all, without colours.
    static std::vector<std::string> plainTerminal() { return {"TERM=xterm", "NO_COLOR=1"}; }

    /// `vexa-standin run m.macro --addon ADDON-PROGRESS OPTIONS`, where m.macro holds \p macro.
    Program progressRunner(const std::string& macro, const std::vector<std::string>& options = {}) const {
        write("m.macro", macro);
        Program program = runner({"run", "m.macro", "--addon", ADDON_PROGRESS});
        program.arguments.insert(program.arguments.end(), options.begin(), options.end());
        return program;
    }

    /// The same in a shell, which does \p before, and redirects as \p after says.
    Program shellRunner(const std::string& macro, const std::string& before, const std::string& after) const {
        const Program program = progressRunner(macro);
        std::string command = before;
        for (const std::string& argument : program.arguments) command += argument + ' ';
        return {{"sh", "-c", command + after}, folder(), "", false};
    }

    /// What a window of \p columns columns shows after the program's output so far.
    static TerminalScreen screenOf(const PtyProgram& program, std::size_t columns = kColumns) {
        TerminalScreen screen(columns);
        screen.feed(program.output());
        return screen;
    }

    static std::size_t countOf(const std::string& text, const std::string& part) {
        std::size_t count = 0;
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
        return count;
    }
};

}  // namespace vexa::e2e
