// An add-on that breaks one rule of the host's contract with each of its commands. A command is named after its rule,
// and more words choose a variant. The same name with "-twin" does nearly the same and keeps the rule.

#include <chrono>
#include <cstring>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <thread>

#include "vexa/AddOn.h"

namespace {

AddOnList_s* identity = nullptr;
bool throwsAtShutdown = false;
ThreadMutex_s* keptMutex = nullptr;
Set_s* keptSet = nullptr;

char* hostString(const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    char* const string = VexaUtilStringAlloc(static_cast<int>(size), "error message");
    if (string != nullptr) std::memcpy(string, text, size);
    return string;
}

template <class Handle>
Handle* foreignHandle() {
    static long something = 0;
    return static_cast<Handle*>(static_cast<void*>(&something));
}

template <class Work>
void onAnotherThread(Work work) {
    std::thread(work).join();
}

// An argument list that is freed.
class List {
public:
    List() = default;
    List(const List&) = delete;
    List& operator=(const List&) = delete;
    ~List() { VexaUtilArgListDealloc(&m_handle); }
    ArgList_s* handle() const { return m_handle; }
    List& path(const char* name) {
        VexaUtilArgListAppendString(m_handle, name, "FIELDMAP");
        return *this;
    }
    List& number() {
        VexaUtilArgListAppendDoublePtr(m_handle, "DValue", &m_number);
        return *this;
    }
    List& param() {
        VexaUtilArgListAppendArbParamPtr(m_handle, "IValue", &m_param);
        return *this;
    }
    void query() { VexaUtilStyleGetLowLevelX(m_handle); }

private:
    double m_number = 0;
    VexaArbParam m_param = 0;
    ArgList_s* m_handle = VexaUtilArgListAlloc();
};

// A mutex that is freed.
class Mutex {
public:
    Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;
    ~Mutex() { VexaUtilThreadMutexDealloc(&m_handle); }
    ThreadMutex_s* handle() const { return m_handle; }
    void lock() { VexaUtilThreadMutexLock(m_handle); }
    void unlock() { VexaUtilThreadMutexUnlock(m_handle); }

private:
    ThreadMutex_s* m_handle = VexaUtilThreadMutexAlloc();
};

void startStatus() { VexaUtilStatusStartPercentDone("working", 0, 1); }

void inStatus(std::initializer_list<int> percents) {
    startStatus();
    for (const int percent : percents) VexaUtilStatusCheckPercentDone(percent);
    VexaUtilStatusFinishPercentDone();
}

VexaBoolean failWith(char** errMsg, char* message) {
    *errMsg = message;
    return 0;
}

struct Behaviour {
    const char* command;
    void (*run)();
};

const Behaviour behaviours[] = {
    // ---- Scopes
    {"unbalanced-lock", [] { VexaUtilLockStart(identity); }},
    {"unbalanced-lock-needless-end", [] { VexaUtilLockFinish(identity); }},
    {"unbalanced-lock-twin",
     [] {
         VexaUtilLockStart(identity);
         VexaUtilAuxDataBeginAssign();
         VexaUtilLockStart(identity);
         VexaUtilLockFinish(identity);
         VexaUtilLockFinish(identity);
         VexaUtilAuxDataEndAssign();
     }},
    {"lock-identity",
     [] {
         VexaUtilLockStart(identity);
         VexaUtilLockFinish(foreignHandle<AddOnList_s>());
     }},
    {"lock-identity-twin",
     [] {
         VexaUtilLockStart(identity);
         VexaUtilLockFinish(identity);
     }},
    {"unbalanced-auxdata", [] { VexaUtilAuxDataBeginAssign(); }},
    {"unbalanced-auxdata-needless-end", [] { VexaUtilAuxDataEndAssign(); }},
    {"unbalanced-auxdata-twin",
     [] {
         VexaUtilAuxDataBeginAssign();
         VexaUtilAuxDataBeginAssign();
         VexaUtilAuxDataEndAssign();
         VexaUtilAuxDataEndAssign();
     }},
    {"unbalanced-marking", [] { VexaUtilDataSetSuspendMarking(1); }},
    {"unbalanced-marking-needless-end",
     [] {
         VexaUtilDataSetSuspendMarking(1);
         VexaUtilDataSetSuspendMarking(0);
         VexaUtilDataSetSuspendMarking(0);
     }},
    {"unbalanced-marking-twin",
     [] {
         VexaUtilDataSetSuspendMarking(1);
         VexaUtilDataSetSuspendMarking(0);
     }},
    {"unbalanced-solution-time", [] { VexaUtilZoneSolutionTimeModificationBegin(); }},
    {"unbalanced-solution-time-needless-end", [] { VexaUtilZoneSolutionTimeModificationEnd(); }},
    {"unbalanced-solution-time-twin",
     [] {
         VexaUtilZoneSolutionTimeModificationBegin();
         VexaUtilZoneSolutionTimeModificationEnd();
     }},

    // ---- The status line
    {"unbalanced-status", [] { startStatus(); }},
    {"unbalanced-status-needless-end", [] { VexaUtilStatusFinishPercentDone(); }},
    {"unbalanced-status-twin", [] { inStatus({}); }},
    {"status-started-twice",
     [] {
         startStatus();
         startStatus();
         VexaUtilStatusFinishPercentDone();
     }},
    {"status-started-twice-and-finished-twice",
     [] {
         startStatus();
         inStatus({});
         VexaUtilStatusFinishPercentDone();
     }},
    {"status-started-twice-twin",
     [] {
         inStatus({});
         inStatus({});
     }},
    {"status-not-started", [] { VexaUtilStatusCheckPercentDone(5); }},
    {"status-not-started-text", [] { VexaUtilStatusSetPercentDoneText("on"); }},
    {"status-not-started-but-finished",
     [] {
         inStatus({100});
         VexaUtilStatusCheckPercentDone(100);
     }},
    {"status-not-started-twin",
     [] {
         startStatus();
         VexaUtilStatusSetPercentDoneText("on");
         VexaUtilStatusCheckPercentDone(5);
         VexaUtilStatusFinishPercentDone();
     }},
    {"percent-out-of-range",
     [] {
         inStatus({50, 101, 60});
     }},
    {"percent-out-of-range-negative", [] { inStatus({-1}); }},
    {"percent-out-of-range-twin",
     [] {
         inStatus({0, 100});
     }},
    {"percent-backwards",
     [] {
         inStatus({50, 49});
     }},
    {"percent-backwards-twin",
     [] {
         inStatus({50, 50, 51});
         inStatus({10});
     }},

    // ---- Handles and addresses
    {"use-after-free",
     [] {
         ArgList_s* list = VexaUtilArgListAlloc();
         ArgList_s* const copy = list;
         VexaUtilArgListDealloc(&list);
         VexaUtilArgListClear(copy);
     }},
    {"use-after-free-twin",
     [] {
         ArgList_s* list = VexaUtilArgListAlloc();
         ArgList_s* copy = list;
         VexaUtilArgListClear(copy);
         VexaUtilArgListDealloc(&copy);
     }},
    {"double-free",
     [] {
         Set_s* set = VexaUtilSetAlloc();
         Set_s* copy = set;
         VexaUtilSetDealloc(&set);
         VexaUtilSetDealloc(&copy);
     }},
    {"double-free-string",
     [] {
         char* string = hostString("text");
         char* copy = string;
         VexaUtilStringDealloc(&string);
         VexaUtilStringDealloc(&copy);
     }},
    {"double-free-twin",
     [] {
         Set_s* set = VexaUtilSetAlloc();
         VexaUtilSetDealloc(&set);
         set = VexaUtilSetAlloc();
         VexaUtilSetDealloc(&set);
     }},
    {"foreign-handle", [] { VexaUtilThreadMutexLock(foreignHandle<ThreadMutex_s>()); }},
    {"foreign-handle-identity",
     [] {
         VexaUtilLockStart(foreignHandle<AddOnList_s>());
         VexaUtilLockFinish(foreignHandle<AddOnList_s>());
     }},
    {"foreign-handle-free",
     [] {
         Set_s* set = foreignHandle<Set_s>();
         VexaUtilSetDealloc(&set);
     }},
    {"foreign-handle-twin", [] { const Mutex mutex; }},
    {"null-handle", [] { VexaUtilArgListClear(nullptr); }},
    {"null-handle-freed-before",
     [] {
         Set_s* set = VexaUtilSetAlloc();
         VexaUtilSetDealloc(&set);
         VexaUtilSetDealloc(&set);
     }},
    {"null-handle-twin", [] { VexaUtilArgListClear(List().handle()); }},
    {"null-address", [] { VexaUtilDialogErrMsg(nullptr); }},
    {"null-address-of-handle", [] { VexaUtilThreadMutexDealloc(nullptr); }},
    {"null-address-of-value",
     [] {
         List list;
         VexaUtilArgListAppendDoublePtr(list.handle(), "DValue", nullptr);
         list.path("P1").query();
     }},
    {"null-address-twin",
     [] {
         VexaUtilDialogErrMsg("");
         VexaUtilDataSetAddJournalCommand("MISBEHAVING", "null-address-twin", nullptr);
     }},
    {"leaked-arglist", [] { VexaUtilArgListAlloc(); }},
    {"leaked-arglist-twelve",
     [] {
         for (int i = 0; i != 12; ++i) VexaUtilArgListAlloc();
     }},
    {"leaked-arglist-twin", [] { const List list; }},
    {"leaked-string", [] { hostString("text"); }},
    {"leaked-string-twin",
     [] {
         char* string = hostString("text");
         VexaUtilStringDealloc(&string);
     }},
    {"leaked-mutex", [] { VexaUtilThreadMutexAlloc(); }},
    {"leaked-mutex-twin", [] { keptMutex = VexaUtilThreadMutexAlloc(); }},
    {"leaked-set", [] { VexaUtilSetInsert(VexaUtilSetAlloc(), 1, 2); }},
    {"leaked-set-twin", [] { keptSet = VexaUtilSetAlloc(); }},

    // ---- Mutexes
    {"mutex-not-held", [] { Mutex().unlock(); }},
    {"mutex-not-held-by-this-thread",
     [] {
         Mutex mutex;
         mutex.lock();
         onAnotherThread([&] { mutex.unlock(); });
         mutex.unlock();
     }},
    {"mutex-not-held-twin",
     [] {
         Mutex mutex;
         mutex.lock();
         mutex.unlock();
         onAnotherThread([&] {
             mutex.lock();
             mutex.unlock();
         });
     }},
    {"mutex-locked-twice",
     [] {
         Mutex mutex;
         mutex.lock();
         mutex.lock();
         mutex.unlock();
     }},
    {"mutex-locked-twice-twin",
     [] {
         Mutex mutex;
         Mutex other;
         mutex.lock();
         other.lock();
         mutex.unlock();
         other.unlock();
         mutex.lock();
         mutex.unlock();
     }},
    {"mutex-freed-locked", [] { Mutex().lock(); }},
    {"mutex-freed-locked-twin",
     [] {
         Mutex mutex;
         mutex.lock();
         mutex.unlock();
     }},
    {"mutex-left-locked",
     [] {
         keptMutex = VexaUtilThreadMutexAlloc();
         VexaUtilThreadMutexLock(keptMutex);
     }},
    {"mutex-left-locked-twin",
     [] {
         keptMutex = VexaUtilThreadMutexAlloc();
         VexaUtilThreadMutexLock(keptMutex);
         VexaUtilThreadMutexUnlock(keptMutex);
     }},

    // ---- Argument lists
    {"missing-argument", [] { List().path("P1").query(); }},
    {"missing-argument-path", [] { List().number().query(); }},
    {"missing-argument-gap", [] { List().path("P1").path("P3").param().query(); }},
    {"missing-argument-after-clear",
     [] {
         List list;
         VexaUtilArgListClear(list.path("P1").number().handle());
         list.number().query();
     }},
    {"missing-argument-twin",
     [] {
         List().number().path("P2").path("P1").query();
         List().path("P1").param().query();
     }},
    {"duplicate-argument", [] { List().path("P1").path("P1").number().query(); }},
    {"duplicate-argument-value", [] { List().path("P1").number().param().query(); }},
    {"duplicate-argument-twin",
     [] {
         List list;
         VexaUtilArgListClear(list.path("P1").number().handle());
         list.path("P1").param().query();
     }},
    {"wrong-argument-kind",
     [] {
         List list;
         VexaUtilArgListAppendString(list.handle(), "Offset1", "1");
         list.path("P1").number().query();
     }},
    {"wrong-argument-kind-path",
     [] {
         List list;
         VexaUtilArgListAppendInt(list.handle(), "P1", 1);
         list.number().query();
     }},
    {"wrong-argument-kind-twin",
     [] {
         List list;
         VexaUtilArgListAppendInt(list.handle(), "Offset1", 1);
         VexaUtilArgListAppendString(list.handle(), "OtherName", "1");
         list.path("P1").number().query();
     }},

    // ---- Threads and commands
    {"wrong-thread", [] { onAnotherThread(VexaUtilMacroIsBatchModeActive); }},
    {"wrong-thread-twin",
     [] {
         Mutex mutex;
         onAnotherThread([&] {
             mutex.lock();
             mutex.unlock();
             const Mutex own;
         });
         VexaUtilMacroIsBatchModeActive();
     }},
    {"escaped-exception", [] { throw std::runtime_error("no such zone"); }},
    {"escaped-exception-shutdown", [] { throwsAtShutdown = true; }},
    {"escaped-exception-twin",
     [] {
         try {
             throw std::runtime_error("no such zone");
         } catch (const std::runtime_error&) {}
     }},
    {"command-timeout",
     [] {
         VexaUtilMacroIsBatchModeActive();
         for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
     }},
    {"command-timeout-twin", [] { VexaUtilMacroIsBatchModeActive(); }},
    {"recording-not-replayable", [] { VexaUtilMacroRecordExtCommand("MISBEHAVING", "no-such-command"); }},
    {"recording-not-replayable-other-text",
     [] { VexaUtilMacroRecordExtCommand("MISBEHAVING", "recording-not-replayable-twin "); }},
    {"recording-not-replayable-blank", [] { VexaUtilMacroRecordExtCommand("MISBEHAVING", "\t"); }},
    {"recording-not-replayable-journal",
     [] { VexaUtilDataSetAddJournalCommand("MISBEHAVING", "one\nANOTHER two", "its data"); }},
    {"recording-not-replayable-twin",
     [] { VexaUtilMacroRecordExtCommand("MISBEHAVING", "recording-not-replayable-twin"); }},
};

struct Outcome {
    const char* command;
    VexaBoolean (*run)(char** errMsg);
};

// What commands do with their error message.
const Outcome outcomes[] = {
    {"string-overrun",
     [](char** errMsg) {
         char* const string = VexaUtilStringAlloc(4, "error message");
         if (string != nullptr) std::memcpy(string, "text", 5);
         return failWith(errMsg, string);
     }},
    {"string-overrun-freed",
     [](char**) -> VexaBoolean {
         char* string = VexaUtilStringAlloc(4, "text");
         if (string != nullptr) std::memcpy(string, "text", 5);
         VexaUtilStringDealloc(&string);
         return 1;
     }},
    {"string-overrun-twin", [](char** errMsg) { return failWith(errMsg, hostString("text")); }},
    {"string-unterminated",
     [](char** errMsg) {
         char* const string = VexaUtilStringAlloc(4, "error message");
         if (string != nullptr) std::memcpy(string, "text", 4);
         return failWith(errMsg, string);
     }},
    {"string-unterminated-twin",
     [](char** errMsg) {
         char* const string = VexaUtilStringAlloc(4, "error message");
         if (string != nullptr) std::memcpy(string, "no\0", 3);
         return failWith(errMsg, string);
     }},
    {"foreign-errmsg",
     [](char** errMsg) {
         static char text[] = "my own text";
         return failWith(errMsg, text);
     }},
    {"foreign-errmsg-twin", [](char** errMsg) { return failWith(errMsg, hostString("the host's text")); }},
    {"use-after-free-errmsg",
     [](char** errMsg) {
         char* string = hostString("text");
         *errMsg = string;
         VexaUtilStringDealloc(&string);
         return VexaBoolean{0};
     }},
    {"errmsg-on-success",
     [](char** errMsg) -> VexaBoolean {
         *errMsg = hostString("all well");
         return 1;
     }},
    {"errmsg-on-success-twin", [](char**) { return VexaBoolean{1}; }},
    {"missing-errmsg", [](char**) { return VexaBoolean{0}; }},
    {"missing-errmsg-twin", [](char** errMsg) { return failWith(errMsg, hostString("no such zone")); }},
};

VexaBoolean execute(const char* command, char** errMsg) {
    for (const Behaviour& behaviour : behaviours) {
        if (std::string(command) == behaviour.command) return behaviour.run(), 1;
    }
    for (const Outcome& outcome : outcomes) {
        if (std::string(command) == outcome.command) return outcome.run(errMsg);
    }
    return failWith(errMsg, hostString("unknown command"));
}

void shutdown() {
    if (keptMutex != nullptr) VexaUtilThreadMutexDealloc(&keptMutex);
    if (keptSet != nullptr) VexaUtilSetDealloc(&keptSet);
    if (throwsAtShutdown) throw std::runtime_error("busy");
}

}  // namespace

const VexaAddOn_s* vexaAddOn(AddOnList_s* self) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, "MISBEHAVING", "Breaks the rules", execute,
                                            shutdown};
    identity = self;
    return &description;
}
