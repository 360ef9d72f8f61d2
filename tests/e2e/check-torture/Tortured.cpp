// An add-on that makes a mistake if its command is disturbed. MISTAKE chooses the mistake. Built without MISTAKE, it is
// the twin that makes none.
//
//   WORK                 reads a style value, shows progress, records itself
//   SAY TEXT = 'text'    shows the text in a dialog, records itself

#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <string>

#include "vexa/AddOn.h"

namespace {

enum class Mistake {
    None,
    LeaksArgumentListWhenAppendFails,
    KeepsLockWhenStringAllocFails,
    FailsSilentlyWhenListAllocFails,
    RecordsNothingAfterStop,
    LeavesStatusUpAfterStop,
    RecordsHalfWithoutMemory,
    LeaksSetWithoutMemory,
    LetsBadAllocEscape,
    CrashesOnOpenQuote,
    CrashesOnLongText,
    HangsOnOpenQuote,
    LeaksStringForControlCharacter,
    RecordsQuotesUnescaped
};

constexpr Mistake kMistake = Mistake::MISTAKE;
constexpr const char* kAddOnId = "TORTURED";
constexpr int kSteps = 5;

AddOnList_s* identity = nullptr;
bool wasStopped = false;

class Failure : public std::exception {
public:
    explicit Failure(std::string message) : m_message(std::move(message)) {}
    const char* what() const noexcept override { return m_message.c_str(); }

private:
    std::string m_message;
};

class Lock {
public:
    Lock() { VexaUtilLockStart(identity); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    ~Lock() { VexaUtilLockFinish(identity); }
};

struct FreeList {
    void operator()(ArgList_s* list) const { VexaUtilArgListDealloc(&list); }
};
struct FreeSet {
    void operator()(Set_s* set) const { VexaUtilSetDealloc(&set); }
};

void askStyle() {
    ArgList_s* const handle = VexaUtilArgListAlloc();
    if (handle == nullptr) throw Failure("no argument list");
    std::unique_ptr<ArgList_s, FreeList> list(handle);
    double value = 0;
    const bool isComplete = VexaUtilArgListAppendString(handle, "P1", "SIZE") != 0 &&
                            VexaUtilArgListAppendDoublePtr(handle, "DValue", &value) != 0;
    if (!isComplete) {
        if (kMistake == Mistake::LeaksArgumentListWhenAppendFails) list.release();
        throw Failure("the argument list is not complete");
    }
    VexaUtilStyleGetLowLevelX(handle);
}

void showProgress(const std::string& text) {
    VexaUtilStatusStartPercentDone(text.c_str(), 1, 1);
    bool isStopped = false;
    for (int step = 1; step <= kSteps && !isStopped; ++step) {
        isStopped = VexaUtilStatusCheckPercentDone(step * 100 / kSteps) == 0;
    }
    if (!isStopped || kMistake != Mistake::LeavesStatusUpAfterStop) VexaUtilStatusFinishPercentDone();
    if (!isStopped) return;
    wasStopped = true;
    throw Failure("stopped");
}

// Returns a text, for which there may be no memory.
std::string useSet() {
    Set_s* handle = VexaUtilSetAlloc();
    if (handle == nullptr) throw Failure("no set");
    std::unique_ptr<Set_s, FreeSet> set(handle);
    if (VexaUtilSetInsert(handle, 1, 2) == 0) throw Failure("the set refuses its members");
    if (kMistake != Mistake::LeaksSetWithoutMemory) return std::string(100, 'x');
    set.release();
    std::string text(100, 'x');
    VexaUtilSetDealloc(&handle);
    return text;
}

void record(const std::string& command) {
    if (VexaUtilMacroIsRecordingActive() == 0) return;
    if (kMistake == Mistake::RecordsNothingAfterStop && wasStopped) return;
    if (VexaUtilMacroRecordExtCommand(kAddOnId, command.c_str()) == 0) throw Failure("the command was not recorded");
}

void work() {
    askStyle();
    showProgress(useSet());
    record("WORK");
}

// Reads a text in single quotes; a quote in it is written twice.
std::string quotedText(const char* at) {
    if (*at != '\'') throw Failure("a quoted text was expected");
    std::string text;
    for (++at;; ++at) {
        if (*at == '\0') {
            if (kMistake == Mistake::HangsOnOpenQuote)
                for (volatile bool waits = true; waits;) {}
            if (kMistake == Mistake::CrashesOnOpenQuote) std::abort();
            throw Failure("the closing quote is missing");
        }
        if (*at == '\'' && at[1] != '\'') break;
        if (*at == '\'') ++at;
        text += *at;
    }
    if (at[1] != '\0') throw Failure("there is more behind the text");
    constexpr std::size_t kLong = 190;
    if (kMistake == Mistake::CrashesOnLongText && text.size() > kLong) std::abort();
    return text;
}

std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : text) {
        result += c;
        if (c == '\'' && kMistake != Mistake::RecordsQuotesUnescaped) result += c;
    }
    return result + '\'';
}

bool isControl(char c) { return static_cast<unsigned char>(c) < ' '; }

void say(const char* value) {
    const std::string text = quotedText(value);
    for (const char c : text) {
        if (!isControl(c)) continue;
        if (kMistake == Mistake::LeaksStringForControlCharacter) VexaUtilStringAlloc(8, "leaking");
        throw Failure("a text has no control characters");
    }
    VexaUtilDialogErrMsg(text.c_str());
    try {
        record("SAY TEXT = " + quoted(text));
    } catch (const std::bad_alloc&) {
        if (kMistake != Mistake::RecordsHalfWithoutMemory) throw;
    }
}

void runCommand(const char* command) {
    constexpr char kSay[] = "SAY TEXT = ";
    if (std::strcmp(command, "WORK") == 0) return work();
    if (std::strncmp(command, kSay, sizeof kSay - 1) == 0) return say(command + sizeof kSay - 1);
    throw Failure("WORK and SAY TEXT = are known");
}

void explain(const char* message, char** errMsg) {
    if (kMistake == Mistake::FailsSilentlyWhenListAllocFails && std::strcmp(message, "no argument list") == 0) return;
    const std::size_t size = std::strlen(message) + 1;
    *errMsg = VexaUtilStringAlloc(static_cast<int>(size), "error message");
    if (*errMsg != nullptr) {
        std::memcpy(*errMsg, message, size);
    } else if (kMistake == Mistake::KeepsLockWhenStringAllocFails) {
        VexaUtilLockStart(identity);
    }
}

VexaBoolean execute(const char* command, char** errMsg) {
    const Lock lock;
    try {
        runCommand(command);
        return 1;
    } catch (const std::exception& failure) {
        const bool isOutOfMemory = dynamic_cast<const std::bad_alloc*>(&failure) != nullptr;
        if (isOutOfMemory && kMistake == Mistake::LetsBadAllocEscape) throw;
        explain(failure.what(), errMsg);
        return 0;
    }
}

constexpr VexaAddOn_s kDescription = {VEXA_ADDON_API_VERSION, kAddOnId, "", execute, nullptr};

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s* self) {
    identity = self;
    return &kDescription;
}
