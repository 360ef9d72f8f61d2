#include <algorithm>
#include <sstream>
#include <vector>

#include "AddOnTest.h"
#include "LoadCommand.h"
#include "ProbeProcessor.h"
#include "vexa/VexaUtil.h"
#include "vexautilutil/CommandRecorder.h"

namespace probestats {
namespace {

using vexa::vexautilutil::CommandRecorder;
using vexa::vexautilutil::RecordedProcessor;

// The members of each option, without its help: `{"name": "HEADER", "type": "Boolean", "default": false`.
std::vector<std::string> optionsIn(const std::string& description) {
    std::vector<std::string> options;
    std::istringstream lines(description);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t begin = line.find("{\"name\": ");
        if (begin != std::string::npos) options.push_back(line.substr(begin, line.find(", \"help\"") - begin));
    }
    std::sort(options.begin(), options.end());
    return options;
}

// The description may also have limits, which the code does not tell.
bool says(const std::string& described, const std::string& recorded) { return described.rfind(recorded, 0) == 0; }

class DescriptionTest : public FolderTest {
protected:
    // What the code tells: LOAD has option objects, and the other commands ask the processor for their options.
    static std::string recorded() {
        std::string rows;
        for (int i = 0; i < 64; ++i) rows += std::to_string(i * 0.5) + ' ' + std::to_string(i % 8) + '\n';
        writeText("probe.txt", rows);
        vexa::standin::Host host;
        host.setChecking(false);  // no add-on is loaded, so its identity is missing
        CommandRecorder recorder(kAddOnId);
        LoadCommand load("FILE='x' COLUMNS=[1] HEADER=FALSE SKIPROWS=0 SAMPLERATE=1 TIMECOLUMN=1");
        recorder.describe(load);
        RecordedProcessor<ProbeProcessor> processor(recorder, nullptr);
        for (const char* const command :
             {"LOAD FILE=\"probe.txt\" TIMECOLUMN=1", "WINDOW FIRST = 1 LAST = 64 STRIDE = 1",
              "SUMMARIZE COLUMNS = [2] FILE = 'a.txt' SPECTRUM = T DETREND = T MINFREQUENCY = 0.25",
              "SPECTRUM COLUMNS = [2] FILE = 'b.txt' SECTION = 16 STEP = 8 MINFREQUENCY = 0.25 MAXFREQUENCY = 1 "
              "FREQUENCYSTEP = 0.25 PEAKS = 2"}) {
            char* message = nullptr;
            EXPECT_TRUE(processor.parseCommandString(command, &message)) << command << ": " << message;
            VexaUtilStringDealloc(&message);
        }
        return recorder.toJson();
    }
};

TEST_F(DescriptionTest, HasTheOptionsOfTheCode) {
    const std::vector<std::string> described = optionsIn(readText(PROBESTATS_FOLDER "/probe-stats.commands.json"));
    const std::vector<std::string> fromCode = optionsIn(recorded());
    ASSERT_EQ(described.size(), fromCode.size());
    for (std::size_t i = 0; i != described.size(); ++i) EXPECT_TRUE(says(described[i], fromCode[i])) << described[i];
}

}  // namespace
}  // namespace probestats
