#include "TableWriter.h"

#include <cmath>
#include <csignal>
#include <cstring>
#include <limits>
#include <random>

#include <sys/resource.h>

#include "Errors.h"
#include "LoaderTest.h"
#include "TableReader.h"

namespace dataloader {
namespace {

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

class WriteTable : public HostTest {
protected:
    static std::string refusalOf(const Table& table, const std::string& fileName) {
        try {
            writeTable(table, fileName);
        } catch (const LoaderError& refusal) {
            return refusal.what();
        }
        return "accepted";
    }
    static Table readBack(const std::string& fileName) {
        return readTable({fileName, std::nullopt, MissingValues::Keep});
    }
};

const Table kSmall{"", {{"a", {1, 2}}}};

Table tableOf(std::size_t rows) {
    return {"", {{"a", std::vector<double>(rows, 0.125)}, {"b", std::vector<double>(rows, -1)}}};
}

TEST_F(WriteTable, WritesNamesAndNumbers) {
    writeTable({"", {{"hour", {0, 1}}, {"say \"hi\", then", {-0.1, kMissing}}}}, "out.csv");
    EXPECT_EQ(contentsOf("out.csv"), "\"hour\",\"say \"\"hi\"\", then\"\n0,-0.1\n1,NA\n");
    EXPECT_EQ(filesHere(), std::set<std::string>{"out.csv"});
}

TEST_F(WriteTable, ReplacesAnOlderFile) {
    write("out.csv", "older, and longer than the table");
    writeTable(kSmall, "out.csv");
    EXPECT_EQ(contentsOf("out.csv"), "\"a\"\n1\n2\n");
}

TEST_F(WriteTable, IsReadBackUnchangedBitByBit) {
    std::mt19937_64 random(7);
    std::vector<double> values;
    while (values.size() < 20000) {
        const uint64_t bits = random();
        double value = 0.0;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isinf(value)) values.push_back(std::isnan(value) ? kMissing : value);
    }
    const Table table{"", {{"random", values}, {"0.5", values}, {" # \"", values}, {"\"\"", values}}};
    writeTable(table, "out.csv");
    const Table again = readBack("out.csv");
    ASSERT_EQ(again.columns.size(), table.columns.size());
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        EXPECT_EQ(again.columns[i].name, table.columns[i].name);
        ASSERT_EQ(again.rowCount(), values.size());
        EXPECT_EQ(std::memcmp(again.columns[i].values.data(), values.data(), values.size() * sizeof(double)), 0);
    }
    const std::string text = contentsOf("out.csv");
    writeTable(again, "out.csv");
    EXPECT_EQ(contentsOf("out.csv"), text);
}

TEST_F(WriteTable, LeavesTheFileAsItWasWhenTheUserStopsIt) {
    write("out.csv", "older");
    host.pressStopAtPercent(50);
    EXPECT_EQ(refusalOf(tableOf(100000), "out.csv"), "EXPORT was stopped by the user");
    EXPECT_EQ(contentsOf("out.csv"), "older");
    EXPECT_EQ(filesHere(), std::set<std::string>{"out.csv"});
    EXPECT_FALSE(host.statusLine().active);
}

TEST_F(WriteTable, LeavesTheFileAsItWasWhenTheDiskIsFull) {
    write("out.csv", "older");
    // No file can grow beyond a limit meanwhile, small enough to be met on the way, or only at the end.
    rlimit usual{};
    getrlimit(RLIMIT_FSIZE, &usual);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    for (const rlim_t limit : {rlim_t{100000}, rlim_t{10}}) {
        const rlimit full{limit, usual.rlim_max};
        setrlimit(RLIMIT_FSIZE, &full);
        const std::string refusal = refusalOf(limit == 10 ? tableOf(20) : tableOf(100000), "out.csv");
        setrlimit(RLIMIT_FSIZE, &usual);
        EXPECT_EQ(refusal, "Cannot write out.csv: File too large");
        EXPECT_EQ(contentsOf("out.csv"), "older");
        EXPECT_EQ(filesHere(), std::set<std::string>{"out.csv"});
    }
    std::signal(SIGXFSZ, handler);
}

TEST_F(WriteTable, RefusesWhereItCannotWrite) {
    std::filesystem::create_directory("folder");
    EXPECT_EQ(refusalOf(kSmall, "folder"), "Cannot write folder: it is no regular file");
    EXPECT_EQ(refusalOf(kSmall, "missing/out.csv"), "Cannot write missing/out.csv: No such file or directory");
    EXPECT_EQ(filesHere(), std::set<std::string>{"folder"});
}

}  // namespace
}  // namespace dataloader
