#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "vexastandin/Host.h"

namespace dataloader {

/// A test in the stand-in host, in an empty folder of its own, which is the current one meanwhile.
class HostTest : public ::testing::Test {
protected:
    HostTest() {
        std::filesystem::create_directory(m_folder);
        std::filesystem::current_path(m_folder);
    }
    ~HostTest() override {
        std::error_code ignored;
        std::filesystem::current_path(m_before, ignored);
        std::filesystem::remove_all(m_folder, ignored);
    }

    /// No test breaks the host's contract, whatever fails in it.
    void TearDown() override {
        host.unloadAddOns();
        for (const vexa::standin::Finding& finding : host.violations()) ADD_FAILURE() << textOf(finding);
    }

    static void write(const std::string& fileName, const std::string& text) {
        std::ofstream(fileName, std::ios::binary) << text;
    }
    static std::string contentsOf(const std::string& fileName) {
        std::ostringstream text;
        text << std::ifstream(fileName, std::ios::binary).rdbuf();
        return text.str();
    }
    static std::set<std::string> filesHere() {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(".")) names.insert(entry.path().filename());
        return names;
    }

    /// A table of \p rows rows: a number, its half, and a quarter of it. Large enough to be stopped on the way.
    static std::string largeTable(int rows = 100000) {
        std::string text = "number,half,quarter\n";
        for (int i = 0; i < rows; ++i) {
            text += std::to_string(i) + ',' + std::to_string(i / 2) + (i % 2 == 1 ? ".5," : ",") +
                    std::to_string(i * 0.25) + '\n';
        }
        return text;
    }

    /// Lets the user press stop when the status line shows half.
    void stopHalfway() {
        host.onStatus([this](const vexa::standin::StatusLine& line) {
            if (line.percent >= 50) host.pressStop();
        });
    }

    vexa::standin::Host host;

private:
    std::filesystem::path m_before = std::filesystem::current_path();
    std::filesystem::path m_folder =
        std::filesystem::temp_directory_path() / ("data-loader-test-" + std::to_string(getpid()));
};

}  // namespace dataloader
