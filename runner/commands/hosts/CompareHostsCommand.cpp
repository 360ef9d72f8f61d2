#include <algorithm>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "commands/Commands.h"
#include "formats/HostFactsFile.h"
#include "options/CommonOptions.h"
#include "options/PrintedOutput.h"
#include "system/files/RunFiles.h"
#include "system/files/WholeOutput.h"
#include "terminal/Console.h"
#include "terminal/TextWidth.h"
#include "text/Counted.h"
#include "text/Printable.h"

namespace vexa::runner {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kCompareFooter =
    R"(Prints a line for each fact that the two hosts answer differently. A fact without
an answer in one of the files is not a difference; the last lines name these facts.

Example:
  vexa-standin compare-hosts standin.json real.json

Exit status:
  0  the hosts answer alike
  1  there are differences
  2  wrong usage, or a file could not be read or written)";

constexpr const char* kColumnGap = "  ";

struct CompareOptions {
    std::string one;
    std::string other;
    std::optional<std::string> json;
};

// A fact, and what the two files have about it; null if a file does not name the fact.
struct ComparedFact {
    std::string name;
    const HostFact* one = nullptr;
    const HostFact* other = nullptr;

    static bool isAnswered(const HostFact* fact) { return fact != nullptr && fact->isAnswered(); }
    bool areBothAnswered() const { return isAnswered(one) && isAnswered(other); }
    bool isDifferent() const { return areBothAnswered() && one->answer != other->answer; }
    const std::string& question() const { return (one == nullptr ? other : one)->question; }
};

// All facts of both files, in the order of the first one.
std::vector<ComparedFact> compared(const std::vector<HostFact>& one, const std::vector<HostFact>& other) {
    std::vector<ComparedFact> facts;
    std::map<std::string, std::size_t> places;
    for (const HostFact& fact : one) {
        places[fact.name] = facts.size();
        facts.push_back({fact.name, &fact, nullptr});
    }
    for (const HostFact& fact : other) {
        const auto place = places.find(fact.name);
        if (place == places.end()) {
            facts.push_back({fact.name, nullptr, &fact});
        } else {
            facts[place->second].other = &fact;
        }
    }
    return facts;
}

using Row = std::vector<std::string>;

// Columns of equal width, but for the last one.
std::string tableOf(const std::vector<Row>& rows) {
    std::vector<std::size_t> widths(rows.front().size(), 0);
    for (const Row& row : rows) {
        for (std::size_t i = 0; i + 1 < row.size(); ++i) widths[i] = std::max(widths[i], widthOf(row[i]));
    }
    std::string table;
    for (const Row& row : rows) {
        for (std::size_t i = 0; i + 1 < row.size(); ++i) {
            table += row[i] + std::string(widths[i] - widthOf(row[i]), ' ') + kColumnGap;
        }
        table += row.back() + '\n';
    }
    return table;
}

std::string differencesText(const std::vector<ComparedFact>& facts, const CompareOptions& options) {
    std::vector<Row> rows = {{"fact", printableLine(options.one), printableLine(options.other), "question"}};
    for (const ComparedFact& fact : facts) {
        if (!fact.isDifferent()) continue;
        rows.push_back({printableLine(fact.name), printableLine(fact.one->answer), printableLine(fact.other->answer),
                        printableLine(fact.question())});
    }
    const std::size_t count = rows.size() - 1;
    const std::string summary = counted(count, "difference");
    return (count == 0 ? "" : tableOf(rows)) + summary + '\n';
}

std::string unansweredText(const std::string& file, const std::string& name, const HostFact* fact) {
    const std::string reason = fact == nullptr ? "the file does not name it" : fact->reason;
    return printableLine("no answer in " + file + ": " + name + (reason.empty() ? "" : "; " + reason)) + '\n';
}

std::string unansweredTexts(const std::vector<ComparedFact>& facts, const CompareOptions& options) {
    std::string lines;
    for (const ComparedFact& fact : facts) {
        const bool isInOne = ComparedFact::isAnswered(fact.one);
        const bool isInOther = ComparedFact::isAnswered(fact.other);
        if (!isInOne && isInOther) lines += unansweredText(options.one, fact.name, fact.one);
        if (isInOne && !isInOther) lines += unansweredText(options.other, fact.name, fact.other);
    }
    return lines;
}

Json jsonOf(const HostFact* fact) { return ComparedFact::isAnswered(fact) ? Json(fact->answer) : Json(nullptr); }

std::string jsonText(const std::vector<ComparedFact>& facts, const CompareOptions& options) {
    Json lists = {
        {"files", {options.one, options.other}}, {"differences", Json::array()}, {"unanswered", Json::array()}};
    for (const ComparedFact& fact : facts) {
        const bool isAnsweredOnce = ComparedFact::isAnswered(fact.one) != ComparedFact::isAnswered(fact.other);
        if (!fact.isDifferent() && !isAnsweredOnce) continue;
        lists[fact.isDifferent() ? "differences" : "unanswered"].push_back(
            {{"fact", fact.name}, {"question", fact.question()}, {"answers", {jsonOf(fact.one), jsonOf(fact.other)}}});
    }
    return lists.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

ExitStatus_e compareHosts(const CompareOptions& options) {
    RunFiles files;
    files.read(options.one);
    files.read(options.other);
    files.write(options.json);
    std::optional<WholeOutput> json;
    if (options.json) json.emplace(*options.json);
    const auto one = readHostFacts(options.one);
    const auto other = readHostFacts(options.other);
    if (!one || !other) return ExitStatus_e::BadUsageOrInput;
    const std::vector<ComparedFact> facts = compared(*one, *other);
    print(differencesText(facts, options) + unansweredTexts(facts, options));
    if (json) json->replace(jsonText(facts, options));
    const bool areAlike = std::none_of(facts.begin(), facts.end(), [](const auto& fact) { return fact.isDifferent(); });
    return checkOutput(areAlike ? ExitStatus_e::AllWell : ExitStatus_e::CommandFailed);
}

}  // namespace

Command compareHostsCommand() {
    const auto options = std::make_shared<CompareOptions>();
    Command command{"compare-hosts", "Compare the facts about two hosts", kCompareFooter};
    command.add(argument("FILE_A", "The facts file of a host", &options->one).require());
    command.add(argument("FILE_B", "The facts file of another host", &options->other).require());
    command.add(option({"--json"}, "FILE", "Write the differences for programs", &options->json));
    command.check = [options] { refuseSecondStandardInput({options->one, options->other}); };
    command.run = [options] { return compareHosts(*options); };
    return command;
}

}  // namespace vexa::runner
