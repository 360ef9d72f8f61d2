#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "MessageText.h"
#include "RunProgram.h"
#include "support/TemporaryFolder.h"

namespace vexa::e2e {

/// A test that runs the real vexa-standin in a temporary folder of its own.
class RunnerTest : public ::testing::Test {
protected:
    // The tests of missing permissions enter the folder as another user.
    RunnerTest() { std::filesystem::permissions(folder(), std::filesystem::perms(0755)); }

    std::filesystem::path folder() const { return m_folder.path(); }

    void write(const std::string& name, const std::string& content) const {
        std::ofstream(folder() / name, std::ios::binary) << content;
    }

    std::string read(const std::string& name) const {
        std::ifstream file(folder() / name, std::ios::binary);
        if (!file) return "(no file " + name + ")";
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// Waits until the file \p name is there.
    /// \return false when it is not within a minute.
    bool waitForFile(const std::string& name) const {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (!std::filesystem::exists(folder() / name)) {
            if (std::chrono::steady_clock::now() > end) return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }

    /// The commands in \p recording, which is the text of a recording: all lines after the heading.
    static std::string commandsOf(const std::string& recording) { return recording.substr(recording.find('\n') + 1); }

    /// The names of all files in the folder, in no order.
    std::vector<std::string> fileNames() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder())) {
            names.push_back(entry.path().filename());
        }
        return names;
    }

    /// `vexa-standin ARGUMENTS`.
    Program runner(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), VEXA_STANDIN);
        return {std::move(arguments), folder(), "", false};
    }

    /// `vexa-standin run m.macro --addon ADDON-ONE OPTIONS`, where m.macro holds \p macro.
    ProgramResult runMacro(const std::string& macro, const std::vector<std::string>& options = {}) const {
        write("m.macro", macro);
        return runProgram(macroRunner(options));
    }

    /// The same for an m.macro that is there.
    Program macroRunner(const std::vector<std::string>& options = {}) const {
        Program program = runner({"run", "m.macro", "--addon", ADDON_ONE});
        program.arguments.insert(program.arguments.end(), options.begin(), options.end());
        return program;
    }

private:
    const tests::TemporaryFolder m_folder;
};

/// A test of permissions, which do not bind root: as root it runs the program as another user, if that one can.
class UnprivilegedRunnerTest : public RunnerTest {
protected:
    void SetUp() override {
        if (runUnprivileged(runner({"list", "--addon", ADDON_ONE})).status != 0) {
            GTEST_SKIP() << "setpriv is missing, or the folder of the build is closed to other users";
        }
    }

    ProgramResult runUnprivileged(Program program) const {
        if (geteuid() == 0) {
            program.arguments.insert(program.arguments.begin(),
                                     {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"});
        }
        return runProgram(program);
    }
};

}  // namespace vexa::e2e
