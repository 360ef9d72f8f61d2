// A program that depends on the layout of the library's classes in every way: it derives from each base class, calls
// each virtual operation and lets the library call it, keeps objects between fences, copies objects by the code of the
// headers, and catches each exception by its type. It prints a line for each result.
//
// Its binary is kept with each release. With every later library of the same major version it must print the same.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <iterator>
#include <memory>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "vexa/InvalidArgumentException.h"
#include "vexa/OutOfMemoryException.h"
#include "vexa/Scanner.h"
#include "vexa/VexaUtil.h"
#include "vexautilutil/vexautilutil.h"

extern "C" char g_recorded[100];  // written by the smallest host, which is linked in

namespace {

using namespace vexa;
using namespace vexa::vexautilutil;
using toolbox::Set;

void say(const std::string& what, const std::string& value) { std::printf("%s: %s\n", what.c_str(), value.c_str()); }
void say(const std::string& what, bool value) { say(what, std::string(value ? "yes" : "no")); }

// Returns the same object, but hides its type from the compiler, so that calls use the table of virtual operations.
template <class Object>
Object& opaque(Object& object) {
    Object* volatile address = &object;
    return *address;
}

// An object in exactly the memory that its header needs. A write beyond this memory breaks the fences.
template <class Object>
class Fenced {
public:
    template <class... Arguments>
    explicit Fenced(Arguments&&... arguments) {
        std::memset(m_before, kFence, sizeof m_before);
        std::memset(m_after, kFence, sizeof m_after);
        new (m_room) Object(std::forward<Arguments>(arguments)...);
    }
    Fenced(const Fenced&) = delete;
    Fenced& operator=(const Fenced&) = delete;
    ~Fenced() {
        (**this).~Object();
        for (std::size_t i = 0; i < sizeof m_before; ++i) {
            if (m_before[i] == kFence && m_after[i] == kFence) continue;
            say("something was written beside an object of so many bytes", std::to_string(sizeof(Object)));
            return;
        }
    }
    Object& operator*() { return opaque(*std::launder(reinterpret_cast<Object*>(m_room))); }
    Object* operator->() { return &**this; }

private:
    static constexpr unsigned char kFence = 0xA5;
    alignas(64) unsigned char m_before[256];
    alignas(Object) unsigned char m_room[sizeof(Object)];
    unsigned char m_after[256];
};

// ---- Exceptions

template <class Caught>
void sayCaught(const char* what, const std::function<void()>& thrower) {
    try {
        thrower();
        say(what, std::string("nothing was thrown"));
    } catch (const Caught& exception) {
        say(what, std::string(opaque(exception).what()));
    } catch (...) {
        say(what, std::string("caught, but not by its type"));
    }
}

// Its message differs between versions of the standard library.
template <class Caught>
void sayCaughtOfTheStandard(const char* what, const std::function<void()>& thrower) {
    bool isCaught = false;
    try {
        thrower();
    } catch (const Caught&) {
        isCaught = true;
    }
    say(what, isCaught);
}

class OwnError : public MacroCommandError {
public:
    explicit OwnError(const std::string& message) : MacroCommandError(message), m_own("own " + message) {}
    const char* what() const noexcept override { return m_own.c_str(); }
    std::exception_ptr cause() const override { return nullptr; }
    const std::string& message() const override { return m_own; }
    void printStackTrace() const override { say("printStackTrace of one's own", m_own); }
    void printStackTrace(FILE* stream) const override { std::fprintf(stream, "to a stream: %s\n", m_own.c_str()); }

private:
    std::string m_own;
};

void useVirtuals(const ExceptionBase& exception) {
    say("  what", std::string(exception.what()));
    say("  message", exception.message());
    say("  has a cause", exception.cause() != nullptr);
    exception.printStackTrace(stdout);
}

template <class Exception>
void useException(const char* name, const std::function<void()>& thrower) {
    sayCaught<Exception>(name, thrower);
    sayCaught<ExceptionBase>("  as ExceptionBase", thrower);
    sayCaught<std::exception>("  as std::exception", thrower);
}

template <class Exception, class... Arguments>
void makeException(const char* name, const Arguments&... arguments) {
    useException<Exception>(name, [&] { throw Exception(arguments...); });
    Fenced<Exception> made(arguments...);
    useVirtuals(*made);
    Fenced<Exception> copy(*made);
    say("  its copy", std::string(copy->what()));
    try {
        throw std::runtime_error("an earlier one");
    } catch (const std::exception&) {
        Fenced<Exception> later(arguments...);
        useVirtuals(*later);
        *copy = *later;
        say("  assigned with its cause", copy->cause() != nullptr);
    }
}

void useExceptions() {
    makeException<ExceptionBase>("ExceptionBase", "a base of all", false);
    makeException<InvalidArgumentException>("InvalidArgumentException", "an argument that is none");
    makeException<OutOfMemoryException>("OutOfMemoryException", "no memory left at all");
    makeException<MacroCommandError>("MacroCommandError", "a macro command in error");
    makeException<InvalidInstructionsException>("InvalidInstructionsException", "instructions", "not followed");
    makeException<OwnError>("OwnError", "a class of the program");
    useException<MacroCommandError>("OwnError as MacroCommandError", [] { throw OwnError("of the program"); });
    opaque<const ExceptionBase>(OwnError("by the base")).printStackTrace();
}

void useErrorsOfTheLibrary() {
    useException<InvalidArgumentException>("refused set", [] { Set().assign("[3-1]"); });
    useException<InvalidArgumentException>("refused progress", [] { ui::TaskProgress(nullptr, 1); });
    useException<MacroCommandError>("refused token", [] {
        const std::string text = "=";
        MacroTokenizer tokens = MacroCommandAbstract::tokenize(text);
        MacroTokenIterator current = tokens.begin();
        parseIdentifier(current, tokens.end());
    });
    sayCaughtOfTheStandard<std::out_of_range>("empty style path", [] {
        std::vector<std::string> path;
        ResultType_e type = ResultType_None;
        GetValueReturnCode_e code = GetValueReturnCode_Ok;
        std::string text;
        getValueAsString(path, 1, 1, type, code, text);
    });
}

// ---- Options and their visitors

class Namer : public MacroOptionPerformerInterface {
public:
    void action(BooleanMacroOption& option) override { say("  visits a Boolean", option.value()); }
    void action(StringMacroOption& option) override { say("  visits a string", option.value()); }
    void action(SetMacroOption& option) override { say("  visits a set", option.value()->toString()); }
    void action(UInt64MacroOption& option) override { say("  visits an integer", std::to_string(option.value())); }
};

class IntegersOnly : public MacroOptionPerformerAbstract {
public:
    IntegersOnly() : MacroOptionPerformerAbstract(true) {}
    using MacroOptionPerformerAbstract::action;
    void action(UInt64MacroOption& option) override { say("  an integer only", std::to_string(option.value())); }
};

class OwnOption : public virtual MacroOptionInterface {
public:
    void perform(MacroOptionPerformerInterface& performer) override {
        UInt64MacroOption stand("STAND", 7, nullptr);
        performer.action(stand);
    }
    std::string name() const override { return "OWN"; }
    bool isDefaultValue() const override { return false; }
    std::string toString() const override { return "OWN=option"; }
};

class LoudCount : public UInt64MacroOption {
public:
    LoudCount() : UInt64MacroOption("LOUD", 3, nullptr) {}
    std::string name() const override { return "LOUDER"; }
    bool isDefaultValue() const override { return m_own != kOwn; }
    std::string toString() const override { return "LOUDER=" + std::to_string(value()); }
    uint64_t value() const override { return UInt64MacroOption::value() + 1; }

private:
    static constexpr uint64_t kOwn = 0x123456789ABCDEF0;
    uint64_t m_own = kOwn;
};

void useOption(MacroOptionInterface& option) {
    say("option", option.name());
    say("  text", option.toString());
    say("  at its default", option.isDefaultValue());
    Namer namer;
    option.perform(opaque<MacroOptionPerformerInterface>(namer));
    IntegersOnly integers;
    option.perform(opaque<MacroOptionPerformerInterface>(integers));
}

template <class Option, class... Arguments>
void makeOption(const char* text, const Arguments&... arguments) {
    Fenced<Option> made(arguments...);
    useOption(*made);
    Fenced<Option> copy(*made);
    useOption(*copy);
    const std::string kept = text;
    MacroTokenizer tokens = MacroCommandAbstract::tokenize(kept);
    MacroTokenIterator current = tokens.begin();
    Fenced<Option> parsed([&] {
        if constexpr (std::is_same_v<Option, SetMacroOption>) {
            return Option(current, tokens.end(), true, nullptr);
        } else {
            return Option(current, tokens.end(), nullptr);
        }
    }());
    useOption(*parsed);
    say("  all was read", current == tokens.end());
    *copy = *parsed;
    say("  assigned", copy->toString());
}

void useOptions() {
    const bool flag = true;
    const uint64_t count = 12;
    const std::string title = "the title of it all";
    Set zones;
    zones.assign("[1-3,5]");
    makeOption<BooleanMacroOption>("ENABLED=false", "ENABLED", true, &flag);
    makeOption<UInt64MacroOption>("COUNT=18446744073709551615", "COUNT", uint64_t{12}, &count);
    makeOption<StringMacroOption>("TITLE='say \"hi\"'", "TITLE", "another title of it", &title);
    makeOption<SetMacroOption>("ZONES=[7-9,1]", "ZONES", &zones, true, &zones);
    Fenced<LoudCount> loud;
    useOption(*loud);
    OwnOption own;
    useOption(opaque<MacroOptionInterface>(own));
}

// ---- Commands

class OwnCommand : public MacroCommandAbstract {
public:
    OwnCommand() : MacroCommandAbstract("OWN") {}
    void execute() override { say("  executed", m_name); }
    void forEachOption(MacroOptionPerformerInterface& performer) override {
        say("  walks", std::to_string(options().size()));
        MacroCommandAbstract::forEachOption(performer);
    }
    std::string name() const override { return "own " + MacroCommandAbstract::name(); }
    std::string toString() const override { return "own " + MacroCommandAbstract::toString(); }

private:
    std::string m_name = "a field behind those of the library";
};

// It has no field, so that a larger base class would write beyond it.
class BareCommand : public MacroCommandAbstract {
public:
    BareCommand() : MacroCommandAbstract("BARE") {}
    void execute() override {}
};

void useCommands() {
    Fenced<BareCommand> bare;
    say("command", bare->toString());
    Fenced<OwnCommand> command;
    command->addOption(std::make_shared<LoudCount>());
    command->addOption(std::make_shared<OwnOption>());
    command->addOption(std::make_shared<StringMacroOption>("TITLE", "a title that is long enough", nullptr));
    MacroCommandAbstract& base = *command;
    say("command", base.name());
    say("  text", base.toString());
    base.execute();
    Namer namer;
    base.forEachOption(namer);
    useException<MacroCommandError>("refused option", [&] { base.addOption(std::make_shared<OwnOption>()); });
    base.options().clear();
    say("  emptied", base.toString());
}

// ---- The processor

class OwnProcessor : public MacroCommandProcessorAbstract {
public:
    bool parseCommandString(const char* command, char** errMsg) override {
        say("processor reads", std::string(command));
        return MacroCommandProcessorAbstract::parseCommandString(command, errMsg);
    }
    bool recordMacroCommand(const char* addOnId) const override {
        return MacroCommandProcessorAbstract::recordMacroCommand(addOnId);
    }
    bool journalMacroCommand(const char* addOnId, const char* data) const override {
        return MacroCommandProcessorAbstract::journalMacroCommand(addOnId, data);
    }
    void depositErrorMessage(const std::string& message) override {
        MacroCommandProcessorAbstract::depositErrorMessage("own " + message);
    }
    bool getCommand(std::string& command) override { return MacroCommandProcessorAbstract::getCommand(command); }
    bool getNextName(std::string& name) override { return MacroCommandProcessorAbstract::getNextName(name); }
    bool getBooleanValue(char& value) override { return MacroCommandProcessorAbstract::getBooleanValue(value); }
    bool getDoubleValue(double& value) override { return MacroCommandProcessorAbstract::getDoubleValue(value); }
    bool getInt32Value(int32_t& value) override { return MacroCommandProcessorAbstract::getInt32Value(value); }
    bool getInt64Value(int64_t& value) override { return MacroCommandProcessorAbstract::getInt64Value(value); }
    bool getStringValue(std::string& value, bool escapes) override {
        return MacroCommandProcessorAbstract::getStringValue(value, escapes);
    }
    bool getSetValue(Set& value) override { return MacroCommandProcessorAbstract::getSetValue(value); }
    bool processCommand() override;
    bool composeCommandString(std::string& command) const override {
        command = "ALL " + toNameValueAssignment("B", char{1}) + toNameValueAssignment("D", 0.5) +
                  toNameValueAssignment("I", int32_t{-3}) + toNameValueAssignment("L", int64_t{9}) +
                  toNameValueAssignment("S", std::string("text")) + toNameValueAssignment("Z", Set());
        return true;
    }

private:
    std::string m_own = "a field behind those of the library";
};

// A set of the program, which the library fills.
class OwnSet : public Set {
public:
    explicit OwnSet(bool isRefusing) : m_isRefusing(isRefusing) {}
    void clear() override {
        say("  clears", Set::toString());
        Set::clear();
    }
    void assign(std::string text) override {
        say("  assigns", text);
        if (m_isRefusing) throw InvalidArgumentException("refused by the program");
        Set::assign(std::move(text));
    }
    std::string toString() const override { return "own " + Set::toString(); }

private:
    bool m_isRefusing;
};

bool OwnProcessor::processCommand() {
    MacroCommandProcessorAbstract& self = opaque<MacroCommandProcessorAbstract>(*this);
    std::string word;
    if (!self.getCommand(word)) return false;
    say("  own field", m_own);
    std::string name;
    while (self.getNextName(name)) {
        char flag = 0;
        double number = 0;
        int32_t narrow = 0;
        int64_t wide = 0;
        std::string text;
        OwnSet set(word == "REFUSE");
        bool isRead = false;
        switch (name[0]) {
            case 'B': isRead = self.getBooleanValue(flag); break;
            case 'D': isRead = self.getDoubleValue(number); break;
            case 'I': isRead = self.getInt32Value(narrow); break;
            case 'L': isRead = self.getInt64Value(wide); break;
            case 'S': isRead = self.getStringValue(text, true); break;
            case 'Z': isRead = self.getSetValue(set); break;
            default: self.depositErrorMessage("does not know " + name); return false;
        }
        if (!isRead) return false;
        std::printf("  %s: %d %g %d %lld \"%s\" %s\n", name.c_str(), flag, number, narrow, static_cast<long long>(wide),
                    text.c_str(), opaque<const Set>(set).toString().c_str());
    }
    return true;
}

void process(MacroCommandProcessorAbstract& processor, const char* command) {
    char* errMsg = nullptr;
    const bool isDone = processor.parseCommandString(command, &errMsg);
    say("  done", isDone);
    if (errMsg == nullptr) return;
    say("  error", std::string(errMsg));
    VexaUtilStringDealloc(&errMsg);
}

// Has no field, as BareCommand.
class BareProcessor : public MacroCommandProcessorAbstract {
public:
    bool processCommand() override { return false; }
    bool composeCommandString(std::string& /*command*/) const override { return false; }
};

void useProcessor() {
    Fenced<BareProcessor> bare;
    process(*bare, "bare");
    Fenced<OwnProcessor> processor;
    process(*processor, R"(all B = yes D = -2.5e3 I = 7 L = 9223372036854775807 S = "a \"b\" c" Z = [5,1-3])");
    process(*processor, "all I = many");
    process(*processor, "all Q = 1");
    process(*processor, "refuse Z = [1]");
    MacroCommandProcessorAbstract& base = *processor;
    say("recorded", base.recordMacroCommand("CLIENT "));
    say("  as", std::string(g_recorded));
    say("journalled", base.journalMacroCommand("CLIENT", "data"));
    sayCaughtOfTheStandard<std::logic_error>("no command at all", [&] { base.parseCommandString(nullptr, nullptr); });
}

// ---- The class libraries

class OwnBar : public ui::ProgressBarInterface {
public:
    void start(const std::string& message) override { say("bar starts", message); }
    void finish() override { say("bar finishes", m_own); }
    void setStatusMessage(const std::string& message) override { say("bar tells", message); }
    void setPercentDone(int percent) override { say("bar at", std::to_string(percent)); }
    bool isInterrupted() const override { return m_own.empty(); }

private:
    std::string m_own = "a field behind those of the library";
};

void useProgress() {
    {
        Fenced<ui::TaskProgress> progress(std::make_shared<OwnBar>(), 4L);
        progress->start("a task");
        progress->advance(2);
        progress->setStatusMessage("the second half");
        say("interrupted", progress->isInterrupted());
        progress->advance();
    }
    createNoopTaskProgressBar()->start("nothing");
    const std::unique_ptr<ui::TaskProgress> shown = createTaskProgressBar(2);
    shown->start("on the status line");
    shown->advance();
    say("interrupted", shown->isInterrupted());
}

void useSets() {
    Fenced<Set> set;
    set->assign("[1-3, 10-20:5]");
    set->insert(7);
    set->insert(30, 32);
    set->erase(2);
    set->erase(31, 40);
    say("set", set->toString());
    Fenced<Set> copy(*set);
    Fenced<Set> moved(std::move(*copy));
    std::string members;
    for (const int64_t member : *moved) members += std::to_string(member) + ' ';
    say("  members", members);
    for (const Set::Range& run : moved->ranges()) say("  to", std::to_string(run.last));
    say("  size", std::to_string(moved->size()));
    say("  equal", *moved == *set);
    moved->clear();
    say("  empty", moved->isEmpty() && !moved->contains(7));
    *moved = *set;
    say("  assigned", moved->toString());
}

void useScanner() {
    Fenced<Scanner> scanner;
    scanner->reset("word 12 -2.5e3 rest;end");
    say("token", scanner->nextToken());
    say("  is an integer", scanner->hasNextInt64Token());
    Fenced<Scanner> copy(*scanner);
    say("  the integer", std::to_string(copy->nextInt64Token()));
    say("  is a double", copy->hasNextDoubleToken());
    *scanner = *copy;
    say("  the double", std::to_string(scanner->nextDoubleToken()));
    scanner->skipWhitespace();
    say("  up to", scanner->nextToken(";"));
    say("  the next", std::string(1, scanner->nextChar()));
    say("  more", scanner->hasNextChar('e') && scanner->hasNextToken() && !scanner->hasNextToken(";"));
}

// ---- Files and the host

void useFiles(const std::string& path) {
    FILE* stream = filesystem::fileOpen(path, "wb");
    if (stream == nullptr) return say("file", std::string("cannot be written"));
    std::fputs("first\r\n# second\n\nfourth", stream);
    stream = filesystem::fileReopen(path, "ab", stream);
    std::fclose(stream);
    unsigned long size = 0;
    say("file", filesystem::fileSize(path, size) && filesystem::fileSize(path.c_str(), size));
    say("  bytes", std::to_string(size));
    Fenced<AsciiFile> file;
    say("  opened", file->open(path));
    say("  lines", std::to_string(file->numLinesInFile()));
    while (!file->isEOF()) {
        const uint64_t line = file->currentLineNumber();
        say("  line", file->readLineAtOffset(line) + '|' + file->readRawLineAtOffset(line));
        say("    empty", file->isEmptyLine(line));
        say("    comment", file->isCommentLine(line, '#'));
        file->advanceToNextLine();
    }
    file->rewind();
    say("  again", file->readLine());
    say("  and on", std::string(file->readRawLine()));
    file->close();
    say("  open", file->isOpen());
    say("  its name", file->fileName() == path);
    say("  renamed", filesystem::fileRename(path, path + ".new") == 0);
    say("  removed", filesystem::fileRemove(path + ".new") == 0);
    std::string slashes = R"(a\b)";
    filesystem::convertPathDelimitersForOS(slashes);
    say("  slashes", slashes);
    say("  home", !filesystem::homeDirectory().empty());
}

void useHost() {
    Fenced<AddOnIdLock> lock(nullptr);
    Fenced<AuxDataSuspendBroadcast> broadcasts;
    Fenced<DataSetSuspendMarking> marking;
    Fenced<SolutionTimeNotificationDeferrer> times;
    Fenced<Mutex> mutex;
    const std::lock_guard<Mutex> held(*mutex);
    std::vector<std::string> path = {"FieldMap", "Name"};
    ResultType_e type = ResultType_Double;
    GetValueReturnCode_e code = GetValueReturnCode_Ok;
    std::string text = "untouched";
    getValueAsString(path, 1, 0, type, code, text);
    say("style", std::to_string(type) + ' ' + std::to_string(code) + ' ' + text);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    std::setvbuf(stdout, nullptr, _IOLBF, 0);  // keeps the output before a crash
    useExceptions();
    useErrorsOfTheLibrary();
    useOptions();
    useCommands();
    useProcessor();
    useProgress();
    useSets();
    useScanner();
    useFiles(argv[1]);
    useHost();
    say("the end", true);
    return 0;
}
