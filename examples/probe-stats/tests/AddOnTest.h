#pragma once

#include <gtest/gtest.h>

#include <stdlib.h>  // mkdtemp

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "vexastandin/Host.h"

namespace probestats {

inline void writeText(const std::string& fileName, const std::string& text) {
    std::ofstream(fileName, std::ios::binary) << text;
}

inline std::string readText(const std::string& fileName) {
    std::ifstream in(fileName, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// A test in an empty folder of its own, which is the current one meanwhile.
class FolderTest : public ::testing::Test {
protected:
    FolderTest() : m_before(std::filesystem::current_path()) {
        std::string folder = (std::filesystem::temp_directory_path() / "probe-stats-XXXXXX").string();
        if (mkdtemp(folder.data()) == nullptr) throw std::runtime_error("no temporary folder");
        m_folder = folder;
        std::filesystem::current_path(m_folder);
    }
    ~FolderTest() override {
        std::error_code ignored;
        std::filesystem::current_path(m_before, ignored);
        std::filesystem::remove_all(m_folder, ignored);
    }

private:
    std::filesystem::path m_before;
    std::filesystem::path m_folder;
};

/// A stand-in host with the add-on loaded.
struct LoadedHost {
    LoadedHost() {
        host.setRecording(true);
        host.loadAddOn(PROBESTATS_ADDON);
    }

    /// Runs a command that is to succeed; returns what it printed.
    std::string run(const std::string& command) {
        testing::internal::CaptureStdout();
        const vexa::standin::CommandResult result = host.run("PROBESTATS", command);
        const std::string printed = testing::internal::GetCapturedStdout();
        EXPECT_TRUE(result.accepted) << command << "\n" << result.error;
        expectNoWarnings(result);
        return printed;
    }

    /// Runs a command that is to fail and to print nothing; returns the message.
    std::string refusalOf(const std::string& command) {
        testing::internal::CaptureStdout();
        const vexa::standin::CommandResult result = host.run("PROBESTATS", command);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << command;
        EXPECT_FALSE(result.accepted) << command;
        expectNoWarnings(result);
        return result.error;
    }

    /// What was recorded, a line a command.
    std::string recorded() const {
        std::string lines;
        for (const vexa::standin::RecordedCommand& command : host.recordedCommands()) lines += command.command + '\n';
        return lines;
    }

    vexa::standin::Host host;

private:
    static void expectNoWarnings(const vexa::standin::CommandResult& result) {
        for (const std::string& warning : result.warnings) ADD_FAILURE() << warning;
    }
};

/// A test of the add-on in the stand-in host, with a small file at hand.
class AddOnTest : public FolderTest, protected LoadedHost {
protected:
    AddOnTest() {
        writeText("probe.txt",
                  "# time, two signals and a label\n"
                  "0.0  1 10 a\n"
                  "0.5  2 10 b\n"
                  "1.0  3 10 c\n"
                  "1.5  4 10 d\n");
    }

    /// No test breaks the host's contract, whatever fails in it.
    void TearDown() override {
        host.unloadAddOns();
        for (const vexa::standin::Finding& finding : host.violations()) ADD_FAILURE() << textOf(finding);
    }
};

}  // namespace probestats
