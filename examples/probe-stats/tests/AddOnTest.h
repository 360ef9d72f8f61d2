#pragma once

#include <gtest/gtest.h>

#include <stdlib.h>  // mkdtemp

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "vexastandin/Testing.h"

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

/// Has the test fail over a breach of the host's contract.
inline void fail(const std::string& finding) { ADD_FAILURE() << finding; }

/// The add-on in a stand-in host. No test breaks the host's contract, whatever fails in it.
struct LoadedHost {
    struct Played {
        vexa::standin::TestedCommand tested;
        std::string printed;
    };

    Played play(const std::string& command) {
        testing::internal::CaptureStdout();
        const vexa::standin::TestedCommand tested = addOn.run(command);
        return {tested, testing::internal::GetCapturedStdout()};
    }

    /// Runs a command that is to succeed; returns what it printed.
    std::string run(const std::string& command) {
        const Played played = play(command);
        EXPECT_TRUE(played.tested.accepted) << played.tested;
        return played.printed;
    }

    /// Runs a command that is to fail and to print nothing; returns the message.
    std::string refusalOf(const std::string& command) {
        const Played played = play(command);
        EXPECT_EQ(played.printed, "") << played.tested;
        EXPECT_FALSE(played.tested.accepted) << played.tested;
        return played.tested.error;
    }

    /// What was recorded, a line a command.
    std::string recorded() const {
        std::string lines;
        for (const vexa::standin::RecordedCommand& command : host.recordedCommands()) lines += command.command + '\n';
        return lines;
    }

    vexa::standin::AddOnTester addOn{PROBESTATS_ADDON};
    vexa::standin::Host& host = addOn.host();
    const vexa::standin::ExpectNoFindings expectation{host, fail};
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
};

}  // namespace probestats
