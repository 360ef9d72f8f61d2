#pragma once

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "RunnerTest.h"

namespace vexa::e2e {

/// A test that checks add-ons by the real vexa-standin.
class CheckRunnerTest : public RunnerTest {
protected:
    /// `vexa-standin check ADDON OPTIONS`, for an add-on of tests/e2e/check.
    ProgramResult check(const std::string& addOn, std::vector<std::string> options) const {
        options.insert(options.begin(), {"check", CHECK_ADDONS "/" + addOn + ".so"});
        return runProgram(runner(std::move(options)));
    }

    /// The same with a macro and one test.
    ProgramResult checkMacro(const std::string& addOn, const std::string& macro, const std::string& test,
                             const std::vector<std::string>& more = {}) const {
        write("m.macro", macro);
        std::vector<std::string> options = {"--macro", "m.macro", "--only", test};
        options.insert(options.end(), more.begin(), more.end());
        return check(addOn, options);
    }

    /// Runs the first command that a check names for reproduction, as a user does.
    ProgramResult reproduced(const ProgramResult& result) const {
        const std::string mark = "reproduce: vexa-standin ";
        const std::size_t begin = result.out.find(mark);
        if (begin == std::string::npos) return {-1, "(nothing to reproduce)", ""};
        const std::size_t arguments = begin + mark.size();
        const std::string line = result.out.substr(arguments, result.out.find('\n', arguments) - arguments);
        return runProgram({{"sh", "-c", std::string("exec '") + VEXA_STANDIN + "' " + line}, folder(), "", false});
    }

    bool exists(const std::string& name) const { return std::filesystem::exists(folder() / name); }
};

/// Whether \p text was printed.
inline bool has(const ProgramResult& result, const std::string& text) {
    return result.out.find(text) != std::string::npos;
}

/// Whether the check printed of \p test that it came out so.
inline bool cameOut(const ProgramResult& result, const std::string& test, const std::string& outcome) {
    std::istringstream lines(result.out);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("  " + outcome + ' ', 0) == 0 && line.find(' ' + test + ' ') != std::string::npos) return true;
    }
    return false;
}

}  // namespace vexa::e2e
