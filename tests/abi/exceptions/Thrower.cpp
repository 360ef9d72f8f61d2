// An add-on that throws every kind of exception, from its own code and through the library.
#include <exception>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Errors.h"
#include "vexa/InvalidArgumentException.h"
#include "vexa/OutOfMemoryException.h"
#include "vexa/VexaUtil.h"
#include "vexautilutil/vexautilutil.h"

namespace {

using namespace vexa;
using namespace vexa::vexautilutil;

class UnnamedError : public MacroCommandError {
public:
    explicit UnnamedError(const std::string& message) : MacroCommandError(message) {}
};

template <class Exception>
void direct() {
    throw Exception("thrown by the add-on");
}

template <class Exception>
void rethrown() {
    try {
        throw Exception("thrown again");
    } catch (const std::exception&) {
        throw;
    }
}

template <class Exception>
void carried() {
    std::exception_ptr kept;
    try {
        throw Exception("carried along");
    } catch (...) {
        kept = std::current_exception();
    }
    std::rethrow_exception(kept);
}

template <class Exception>
void caused() {
    try {
        throw InvalidArgumentException("the cause");
    } catch (const InvalidArgumentException&) {
        throw Exception("the effect");
    }
}

template <class Exception>
void nested() {
    try {
        throw std::bad_alloc();
    } catch (const std::bad_alloc&) {
        std::throw_with_nested(Exception("around it"));
    }
}

// ---- Exceptions of the library

void refusedSet() { toolbox::Set().assign("[x]"); }
void refusedBar() { ui::TaskProgress(nullptr, 1); }

void refusedOption() {
    const std::string text = "FLAG=MAYBE";
    MacroTokenizer tokens = MacroCommandAbstract::tokenize(text);
    MacroTokenIterator current = tokens.begin();
    BooleanMacroOption(current, tokens.end(), nullptr);
}

void emptyPath() {
    std::vector<std::string> path;
    ResultType_e type = ResultType_None;
    GetValueReturnCode_e code = GetValueReturnCode_Ok;
    std::string text;
    getValueAsString(path, 1, 1, type, code, text);
}

// ---- Exceptions of functions that the library calls

template <class Exception>
class Option : public virtual MacroOptionInterface {
public:
    void perform(MacroOptionPerformerInterface& /*performer*/) override { throw Exception("from perform"); }
    std::string name() const override { return "OPTION"; }
    bool isDefaultValue() const override { return false; }
    std::string toString() const override { throw Exception("from toString"); }
};

template <class Exception>
class Performer : public MacroOptionPerformerAbstract {
public:
    Performer() : MacroOptionPerformerAbstract(false) {}
    using MacroOptionPerformerAbstract::action;
    void action(BooleanMacroOption& /*option*/) override { throw Exception("from action"); }
};

class Command : public MacroCommandAbstract {
public:
    explicit Command(std::shared_ptr<MacroOptionInterface> option) : MacroCommandAbstract("COMMAND") {
        addOption(std::move(option));
    }
    void execute() override {}
};

template <class Exception>
class Bar : public ui::ProgressBarInterface {
public:
    void start(const std::string& /*message*/) override { throw Exception("from start"); }
    void finish() override {}
    void setStatusMessage(const std::string& /*message*/) override {}
    void setPercentDone(int /*percent*/) override {}
    bool isInterrupted() const override { return false; }
};

template <class Exception>
class Set : public toolbox::Set {
public:
    void assign(std::string /*text*/) override { throw Exception("from assign"); }
};

template <class Exception>
class Processor : public MacroCommandProcessorAbstract {
public:
    bool processCommand() override {
        std::string word;
        if (!getCommand(word) || word != "SET") throw Exception("from processCommand");
        Set<Exception> set;
        return getSetValue(set);
    }
    bool composeCommandString(std::string& /*command*/) const override { throw Exception("from composeCommandString"); }
};

template <class Exception>
void fromPerform() {
    MacroOptionPerformerAbstract none(false);
    Command(std::make_shared<Option<Exception>>()).forEachOption(none);
}

template <class Exception>
void fromToString() {
    Command(std::make_shared<Option<Exception>>()).toString();
}

template <class Exception>
void fromAction() {
    Performer<Exception> performer;
    Command(std::make_shared<BooleanMacroOption>("FLAG", true, nullptr)).forEachOption(performer);
}

template <class Exception>
void fromBar() {
    ui::TaskProgress(std::make_shared<Bar<Exception>>(), 1).start("a task");
}

template <class Exception>
void fromProcessCommand() {
    char* errMsg = nullptr;
    Processor<Exception>().parseCommandString("COMMAND", &errMsg);
}

template <class Exception>
void fromComposeCommandString() {
    Processor<Exception>().recordMacroCommand("ADDON");
}

// The library catches the exception of the set, and throws its own exception with the message.
template <class Exception>
void fromAssign() {
    char* errMsg = nullptr;
    Processor<Exception>().parseCommandString("SET [1]", &errMsg);
    const std::string message = errMsg == nullptr ? "none" : errMsg;
    VexaUtilStringDealloc(&errMsg);
    throw MacroCommandError("the library told: " + message);
}

class RefusedByTheAddOn : public InvalidArgumentException {
public:
    explicit RefusedByTheAddOn(const std::string& message) : InvalidArgumentException(message) {}
};

class ExhaustedInTheAddOn : public OutOfMemoryException {
public:
    explicit ExhaustedInTheAddOn(const std::string& message) : OutOfMemoryException(message) {}
};

class TracedError : public ExceptionBase {
public:
    explicit TracedError(const std::string& message) : ExceptionBase(message, true) {}
};

class Instructions : public InvalidInstructionsException {
public:
    explicit Instructions(const std::string& detail) : InvalidInstructionsException("Instructions", detail) {}
};

class NoMemory : public std::bad_alloc {
public:
    explicit NoMemory(const char* /*message*/) {}
    const char* what() const noexcept override { return "no memory"; }
};

void exactBase() { throw ExceptionBase("thrown by the add-on", false); }
void exactInstructions() { throw InvalidInstructionsException("thrown by", "the add-on"); }
void exactBadAlloc() { throw std::bad_alloc(); }
void exactException() { throw std::exception(); }
void aNumber() { throw 42; }

// Throws this class in each way.
#define EACH_WAY(Exception)                                                                                         \
    {"direct " #Exception, direct<Exception>}, {"rethrown " #Exception, rethrown<Exception>},                       \
        {"carried " #Exception, carried<Exception>}, {"caused " #Exception, caused<Exception>},                     \
        {"nested " #Exception, nested<Exception>}, {"from perform " #Exception, fromPerform<Exception>},            \
        {"from toString " #Exception, fromToString<Exception>}, {"from action " #Exception, fromAction<Exception>}, \
        {"from a bar " #Exception, fromBar<Exception>},                                                             \
        {"from processCommand " #Exception, fromProcessCommand<Exception>}, {                                       \
        "from composeCommandString " #Exception, fromComposeCommandString<Exception>                                \
    }

const Throw kThrows[] = {
    {"exact ExceptionBase", exactBase},
    {"exact InvalidInstructionsException", exactInstructions},
    {"exact std::bad_alloc", exactBadAlloc},
    {"exact std::exception", exactException},
    {"a number", aNumber},
    EACH_WAY(TracedError),
    EACH_WAY(InvalidArgumentException),
    EACH_WAY(OutOfMemoryException),
    EACH_WAY(MacroCommandError),
    EACH_WAY(Instructions),
    EACH_WAY(SharedError),
    EACH_WAY(HiddenError),
    EACH_WAY(UnnamedError),
    EACH_WAY(NoMemory),
    EACH_WAY(std::runtime_error),
    EACH_WAY(std::logic_error),
    {"refused set", refusedSet},
    {"refused bar", refusedBar},
    {"refused option", refusedOption},
    {"empty path", emptyPath},
    {"caught InvalidArgumentException", fromAssign<InvalidArgumentException>},
    {"caught RefusedByTheAddOn", fromAssign<RefusedByTheAddOn>},
    {"caught OutOfMemoryException", fromAssign<OutOfMemoryException>},
    {"caught ExhaustedInTheAddOn", fromAssign<ExhaustedInTheAddOn>},
    {nullptr, nullptr},
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const Throw* throws();
const Throw* throws() { return kThrows; }
