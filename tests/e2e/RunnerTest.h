#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "RunProgram.h"

namespace vexa::e2e {

/// A test that runs the real vexa-standin in a temporary folder of its own.
class RunnerTest : public ::testing::Test {
protected:
    RunnerTest() {
        std::string name = (std::filesystem::temp_directory_path() / "vexa-e2e-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
        m_folder = name;
        // The tests of missing permissions enter it as another user.
        std::filesystem::permissions(m_folder, std::filesystem::perms(0755));
    }
    ~RunnerTest() override {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    const std::filesystem::path& folder() const { return m_folder; }

    void write(const std::string& name, const std::string& content) const {
        std::ofstream(m_folder / name, std::ios::binary) << content;
    }

    std::string read(const std::string& name) const {
        std::ifstream file(m_folder / name, std::ios::binary);
        if (!file) return "(no file " + name + ")";
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// What \p recording, a file of recorded commands, has below its first line, which tells what it is.
    static std::string commandsOf(const std::string& recording) { return recording.substr(recording.find('\n') + 1); }

    /// The names of all files in the folder, in no order.
    std::vector<std::string> fileNames() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder)) {
            names.push_back(entry.path().filename());
        }
        return names;
    }

    /// `vexa-standin ARGUMENTS`.
    Program runner(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), VEXA_STANDIN);
        return {std::move(arguments), m_folder, "", false};
    }

    /// `vexa-standin run m.mcr --addon ADDON-ONE OPTIONS`, where m.mcr holds \p macro.
    ProgramResult runMacro(const std::string& macro, const std::vector<std::string>& options = {}) const {
        write("m.mcr", macro);
        return runProgram(macroRunner(options));
    }

    /// The same for an m.mcr that is there.
    Program macroRunner(const std::vector<std::string>& options = {}) const {
        Program program = runner({"run", "m.mcr", "--addon", ADDON_ONE});
        program.arguments.insert(program.arguments.end(), options.begin(), options.end());
        return program;
    }

private:
    std::filesystem::path m_folder;
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
