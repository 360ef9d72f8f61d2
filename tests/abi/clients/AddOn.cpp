// An add-on that uses every part of the library. Its binary is kept with each release. With every later library of the
// same major version it must print the same, record the same and make the same host calls.
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "vexa/AddOn.h"
#include "vexa/InvalidArgumentException.h"
#include "vexa/Scanner.h"
#include "vexautilutil/vexautilutil.h"

namespace {

using namespace vexa;
using namespace vexa::vexautilutil;

AddOnList_s* identity = nullptr;

// A macro command that is written and read back.
class Slice : public MacroCommandAbstract {
public:
    Slice() : MacroCommandAbstract("SLICE") {}
    void execute() override { std::printf("slices: %s\n", toString().c_str()); }

    // Reads "NAME=VALUE NAME=VALUE ...".
    void read(const std::string& text) {
        MacroTokenizer tokens = tokenize(text);
        MacroTokenIterator current = tokens.begin();
        const MacroTokenIterator end = tokens.end();
        while (current != end) {
            const char kind = (*current)[0];
            addOption(parse(kind, current, end));
            if (current != end) ++current;  // the blank
        }
    }

private:
    static std::shared_ptr<MacroOptionInterface> parse(char kind, MacroTokenIterator& current,
                                                       const MacroTokenIterator& end) {
        static const bool kFlag = true;
        static const uint64_t kCount = 5;
        static const std::string kTitle = "untitled";
        switch (kind) {
            case 'F': return std::make_shared<BooleanMacroOption>(current, end, &kFlag);
            case 'C': return std::make_shared<UInt64MacroOption>(current, end, &kCount);
            case 'T': return std::make_shared<StringMacroOption>(current, end, &kTitle);
            case 'Z': return std::make_shared<SetMacroOption>(current, end, false, nullptr);
            default: throw MacroCommandError("No option begins like " + *current);
        }
    }
};

// Counts the options of a command.
class Counter : public MacroOptionPerformerAbstract {
public:
    Counter() : MacroOptionPerformerAbstract(false) {}
    void action(BooleanMacroOption& option) override { m_all += option.value() ? 1 : 0; }
    void action(StringMacroOption& option) override { m_all += option.value().size(); }
    void action(SetMacroOption& option) override { m_all += option.value()->size(); }
    void action(UInt64MacroOption& option) override { m_all += option.value(); }
    uint64_t all() const { return m_all; }

private:
    uint64_t m_all = 0;
};

std::string sumOf(const AsciiFile& file, const std::string& line) {
    Scanner scanner;
    scanner.reset(line);
    double sum = 0;
    while (scanner.hasNextDoubleToken()) sum += scanner.nextDoubleToken();
    if (scanner.hasNextToken()) file.errorWithFormattedString("This is no number: %s", scanner.nextToken());
    return std::to_string(sum);
}

class Processor : public MacroCommandProcessorAbstract {
public:
    bool processCommand() override {
        std::string word;
        if (!getCommand(word)) return false;
        if (word == "SLICE") return slice();
        if (word == "READ") return read();
        if (word == "ASK") return ask();
        depositErrorMessage("There is no command " + word);
        return false;
    }

    bool composeCommandString(std::string& command) const override {
        if (m_recorded.empty()) return false;
        command = m_recorded;
        return true;
    }

private:
    bool slice() {
        std::string name;
        std::string text;
        if (!getNextName(name) || !getStringValue(text, true)) return false;
        Slice slice;
        slice.read(text);
        const AddOnIdLock lock(identity);
        const AuxDataSuspendBroadcast broadcasts;
        slice.execute();
        Counter counter;
        slice.forEachOption(counter);
        std::printf("counts: %llu\n", static_cast<unsigned long long>(counter.all()));
        std::string escaped = slice.toString().substr(slice.name().size());
        m_recorded = "SLICE " + toNameValueAssignment("OPTIONS", escaped.erase(0, 1));
        return true;
    }

    bool read() {
        std::string name;
        std::string path;
        char isTold = 0;
        if (!getNextName(name) || !getStringValue(path, false)) return false;
        if (!getNextName(name) || !getBooleanValue(isTold)) return false;
        AsciiFile file;
        if (!file.open(path)) throw InvalidInstructionsException("Cannot read", path);
        const DataSetSuspendMarking marking;
        const SolutionTimeNotificationDeferrer times;
        const std::unique_ptr<ui::TaskProgress> progress =
            createTaskProgressBar(static_cast<long>(file.numLinesInFile()));
        progress->start("Reading");
        for (uint64_t index = 0; !file.isEOF() && !progress->isInterrupted(); ++index) {
            const bool isComment = file.isCommentLine(index, '#') || file.isEmptyLine(index);
            const std::string line = file.readLine();
            if (isTold != 0) std::printf("line: %s\n", isComment ? "comment" : sumOf(file, line).c_str());
            progress->advance();
        }
        return true;
    }

    bool ask() {
        std::string name;
        toolbox::Set zones;
        double level = 0;
        int32_t narrow = 0;
        int64_t wide = 0;
        if (!getNextName(name) || !getSetValue(zones)) return false;
        if (!getNextName(name) || !getDoubleValue(level)) return false;
        if (!getNextName(name) || !getInt32Value(narrow)) return false;
        if (!getNextName(name) || !getInt64Value(wide)) return false;
        const std::lock_guard<Mutex> lock(m_mutex);
        for (const int64_t zone : zones)
            std::printf("zone: %lld %s\n", static_cast<long long>(zone), style(zone).c_str());
        m_recorded = "ASK " + toNameValueAssignment("ZONES", zones) + " " + toNameValueAssignment("LEVEL", level) +
                     toNameValueAssignment("NARROW", narrow) + toNameValueAssignment("WIDE", wide);
        return true;
    }

    static std::string style(int64_t zone) {
        std::vector<std::string> path = {"FieldMap", "Mesh", "LineThickness"};
        ResultType_e type = ResultType_None;
        GetValueReturnCode_e code = GetValueReturnCode_Ok;
        std::string text;
        getValueAsString(path, static_cast<long>(zone), 0, type, code, text);
        return std::to_string(type) + ' ' + std::to_string(code) + ' ' + text;
    }

    Mutex m_mutex;
    std::string m_recorded;
};

// The host owns the string.
char* hostString(const char* text) {
    const std::string message = text;
    char* const copy = VexaUtilStringAlloc(static_cast<int>(message.size()) + 1, "error message");
    if (copy != nullptr) message.copy(copy, message.size());
    if (copy != nullptr) copy[message.size()] = '\0';
    return copy;
}

VexaBoolean execute(const char* command, char** errMsg) {
    try {
        Processor processor;
        if (!processor.parseCommandString(command, errMsg)) return 0;
        processor.recordMacroCommand("CLIENT");
        processor.journalMacroCommand("CLIENT", nullptr);
        return 1;
    } catch (const MacroCommandError& error) {
        *errMsg = hostString((std::string("macro: ") + error.what()).c_str());
    } catch (const InvalidInstructionsException& error) {
        *errMsg = hostString((std::string("file: ") + error.what()).c_str());
    } catch (...) {
        *errMsg = hostString("something else was thrown");
    }
    return 0;
}

}  // namespace

extern "C" const VexaAddOn_s* vexaAddOn(AddOnList_s* self) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "CLIENT", "A kept add-on", execute, nullptr};
    identity = self;
    return &description;
}
