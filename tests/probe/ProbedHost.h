#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/TemporaryFolder.h"
#include "vexastandin/Host.h"

namespace vexa::probe {

using Json = nlohmann::ordered_json;

/// A test with a stand-in host that has loaded the probe, and with a folder for its facts file.
class ProbedHost : public ::testing::Test {
protected:
    ProbedHost() { host.setStyle({"VEXAPROBE", "SETTING", "SIZE"}, 0, 0, 0.25); }

    void load() { host.loadAddOn(VEXA_PROBE); }

    std::string file() const { return folder.path("facts.json"); }

    /// Runs `VEXAPROBE COMMAND`.
    /// \return the error message; empty on success.
    std::string run(const std::string& command) {
        const standin::CommandResult result = host.run("VEXAPROBE", command);
        EXPECT_EQ(result.accepted, result.error.empty()) << result.error;
        return result.error;
    }

    /// `VEXAPROBE WRITE FILE = '...' OPTIONS`.
    std::string write(const std::string& options = "") { return run("WRITE FILE = '" + file() + "' " + options); }
    std::string writeAll() { return write("RISKY = TRUE SETTING = 'VEXAPROBE SETTING SIZE'"); }

    Json content() const {
        std::ifstream stream(file());
        return Json::parse(stream);
    }
    Json answer(const std::string& fact) const { return content()["facts"][fact]["answer"]; }
    std::string reason(const std::string& fact) const { return content()["facts"][fact].value("reason", ""); }

    const tests::TemporaryFolder folder;
    standin::Host host;
};

/// An answer as the table of facts writes it.
inline std::string textOf(const Json& answer) { return answer.is_string() ? answer.get<std::string>() : answer.dump(); }

}  // namespace vexa::probe
