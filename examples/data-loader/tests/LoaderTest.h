#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "vexastandin/Testing.h"

namespace dataloader {

/// A test in an empty folder of its own, which is the current one meanwhile.
class FolderTest : public ::testing::Test {
protected:
    FolderTest() {
        std::filesystem::create_directory(m_folder);
        std::filesystem::current_path(m_folder);
    }
    ~FolderTest() override {
        std::error_code ignored;
        std::filesystem::current_path(m_before, ignored);
        std::filesystem::remove_all(m_folder, ignored);
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

private:
    std::filesystem::path m_before = std::filesystem::current_path();
    std::filesystem::path m_folder =
        std::filesystem::temp_directory_path() / ("data-loader-test-" + std::to_string(getpid()));
};

/// Has the test fail over a breach of the host's contract.
inline void fail(const std::string& finding) { ADD_FAILURE() << finding; }

/// A test of parts of the add-on in a stand-in host.
class HostTest : public FolderTest {
protected:
    vexa::standin::Host host;

private:
    const vexa::standin::ExpectNoFindings m_expectation{host, fail};
};

}  // namespace dataloader
