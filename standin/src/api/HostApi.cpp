// The host's C functions. Each passes answer() a lambda with what only this function does.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include "HostState.h"
#include "answers/RecordingAnswers.h"
#include "api/Answer.h"
#include "contract/HostFunctionTable.h"
#include "vexa/VexaUtil.h"

namespace vexa::standin {
namespace {

// For functions that only record their call.
void takeNote(HostState&) {}

// ---- Used by several functions

const char* orEmpty(const char* text) { return text == nullptr ? "" : text; }

template <class Object>
Object* allocate(Handles<Object>& handles) {
    auto object = std::make_shared<Object>();
    Object* const handle = object.get();
    handles.add(handle, std::move(object));
    return handle;
}

// Sets the handle to null if the host answers so.
template <class Object, class Handle>
void release(Handles<Object, Handle>& handles, Handle** handle, bool clearsHandle) {
    if (handle != nullptr && handles.remove(*handle) && clearsHandle) *handle = nullptr;
}

template <class Value>
VexaBoolean append(HostState& host, const ArgList_s* argList, const char* name, Value value) {
    const auto list = host.argLists.find(argList);
    if (list == nullptr || name == nullptr) return 0;
    if constexpr (std::is_pointer_v<Value>) {
        if (value == nullptr) return 0;
    }
    return list->append(name, value, host.answers);
}

GetValueReturnCode_e answerQuery(const HostState& host, ArgList_s& list) {
    const auto query = styleQueryOf(list.all(), host.answers);
    const GetValueReturnCode_e code = query ? host.styles.answer(*query, host.answers) : GetValueReturnCode_UnknownPath;
    if (!host.answers.truth(Fact::StyleSettingListIsKept)) list.clear();
    return code;
}

bool isLoaded(const HostState& host, const std::string& addOnId) {
    const auto addOns = host.addOns.copy();
    return std::any_of(addOns.begin(), addOns.end(), [&](const auto& addOn) { return addOn->info().id == addOnId; });
}

bool isStringGiven(const HostAnswers& answers, int size, const char* purpose) {
    constexpr int kLarge = 1 << 20;
    if (purpose == nullptr && !answers.truth(Fact::StringAllocNoPurpose)) return false;
    if (size == 0) return answers.truth(Fact::StringAllocNoBytes);
    if (size < 0) return answers.truth(Fact::StringAllocNegative);
    return size < kLarge || answers.truth(Fact::StringAllocLarge);
}

// Shows a change of the status line. Without memory the change is left out: the task must not be told to stop.
template <class Change>
void changeStatus(HostState& host, const Change& change) {
    try {
        host.showChange(change(host.status, host.calls.keeps()));
    } catch (const std::bad_alloc&) {}
}

}  // namespace
}  // namespace vexa::standin

using namespace vexa::standin;

// Without this, a function whose parameters differ from the header's would be an overload, and the header's function
// would be missing.
extern "C" {

void VexaUtilLockStart(AddOnList_s* addOnId) {
    answer<HostFunction::VexaUtilLockStart>([=](HostState& host) { host.lock.start(addOnId); }, addOnId);
}

void VexaUtilLockFinish(AddOnList_s* addOnId) {
    answer<HostFunction::VexaUtilLockFinish>([=](HostState& host) { host.lock.finish(addOnId); }, addOnId);
}

void VexaUtilAuxDataBeginAssign() { answer<HostFunction::VexaUtilAuxDataBeginAssign>(takeNote); }

void VexaUtilAuxDataEndAssign() { answer<HostFunction::VexaUtilAuxDataEndAssign>(takeNote); }

void VexaUtilDataSetSuspendMarking(VexaBoolean suspend) {
    answer<HostFunction::VexaUtilDataSetSuspendMarking>(takeNote, suspend);
}

void VexaUtilZoneSolutionTimeModificationBegin() {
    answer<HostFunction::VexaUtilZoneSolutionTimeModificationBegin>(takeNote);
}

void VexaUtilZoneSolutionTimeModificationEnd() {
    answer<HostFunction::VexaUtilZoneSolutionTimeModificationEnd>(takeNote);
}

ThreadMutex_s* VexaUtilThreadMutexAlloc() {
    return answer<HostFunction::VexaUtilThreadMutexAlloc>([](HostState& host) -> ThreadMutex_s* {
        const auto most = host.answers.limit(Fact::MutexMost);
        return most && host.mutexes.count() >= *most ? nullptr : allocate(host.mutexes);
    });
}

void VexaUtilThreadMutexDealloc(ThreadMutex_s** mutex) {
    answer<HostFunction::VexaUtilThreadMutexDealloc>(
        [=](HostState& host) {
            const auto found = mutex == nullptr ? nullptr : host.mutexes.find(*mutex);
            if (found == nullptr || !found->close()) return;
            release(host.mutexes, mutex, host.answers.truth(Fact::MutexDeallocClearsHandle));
        },
        mutex);
}

void VexaUtilThreadMutexLock(ThreadMutex_s* mutex) {
    answer<HostFunction::VexaUtilThreadMutexLock>(
        [=](HostState& host) {
            if (const auto found = host.mutexes.find(mutex)) found->lock();
        },
        mutex);
}

void VexaUtilThreadMutexUnlock(ThreadMutex_s* mutex) {
    answer<HostFunction::VexaUtilThreadMutexUnlock>(
        [=](HostState& host) {
            if (const auto found = host.mutexes.find(mutex)) found->unlock();
        },
        mutex);
}

VexaBoolean VexaUtilMacroIsBatchModeActive() {
    return answer<HostFunction::VexaUtilMacroIsBatchModeActive>(
        [](HostState& host) -> VexaBoolean { return host.isBatchMode; });
}

void VexaUtilStatusStartPercentDone(const char* text, VexaBoolean showStopButton, VexaBoolean showBar) {
    answer<HostFunction::VexaUtilStatusStartPercentDone>(
        [=](HostState& host) {
            changeStatus(host, [=](Status& status, bool keeps) {
                return status.start(orEmpty(text), showStopButton != 0, showBar != 0, keeps);
            });
        },
        text, showStopButton, showBar);
}

VexaBoolean VexaUtilStatusCheckPercentDone(int percent) {
    return answer<HostFunction::VexaUtilStatusCheckPercentDone>(
        [=](HostState& host) -> VexaBoolean {
            const auto fact = host.status.factAbout(percent);
            changeStatus(host, [=](Status& status, bool keeps) { return status.setPercent(percent, keeps); });
            return !host.stopRequest.isPressedAt(percent) && (!fact || host.answers.truth(*fact));
        },
        percent);
}

void VexaUtilStatusSetPercentDoneText(const char* text) {
    answer<HostFunction::VexaUtilStatusSetPercentDoneText>(
        [=](HostState& host) {
            changeStatus(host, [=](Status& status, bool keeps) { return status.setText(orEmpty(text), keeps); });
        },
        text);
}

void VexaUtilStatusFinishPercentDone() {
    answer<HostFunction::VexaUtilStatusFinishPercentDone>(
        [](HostState& host) { changeStatus(host, [](Status& status, bool keeps) { return status.finish(keeps); }); });
}

VexaBoolean VexaUtilMacroIsRecordingActive() {
    return answer<HostFunction::VexaUtilMacroIsRecordingActive>(
        [](HostState& host) -> VexaBoolean { return host.isRecording; });
}

VexaBoolean VexaUtilStateIsProcessingJournal() {
    return answer<HostFunction::VexaUtilStateIsProcessingJournal>(
        [](HostState& host) -> VexaBoolean { return host.isProcessingJournal; });
}

VexaBoolean VexaUtilStateIsProcessingLayout() {
    return answer<HostFunction::VexaUtilStateIsProcessingLayout>(
        [](HostState& host) -> VexaBoolean { return host.isProcessingLayout; });
}

VexaBoolean VexaUtilMacroRecordExtCommand(const char* addOnId, const char* command) {
    return answer<HostFunction::VexaUtilMacroRecordExtCommand>(
        [=](HostState& host) -> VexaBoolean {
            const bool isKnown = host.answers.truth(Fact::RecordUnknownAddOn) || isLoaded(host, orEmpty(addOnId));
            const auto answer = answerToRecording(host.answers, host.isRecording, isKnown, addOnId, command);
            if (!answer.isKept) return answer.isAccepted;
            const auto function = HostFunction::VexaUtilMacroRecordExtCommand;
            const RecordedCommand recorded{addOnId, command, host.contract.placeNow(host.progress->calls, function)};
            host.recorded.append(recorded);
            if (const auto keep = host.keepRecorded.copy()) keep(recorded);
            return 1;
        },
        addOnId, command);
}

VexaBoolean VexaUtilDataSetAddJournalCommand(const char* addOnId, const char* command, const char* journalData) {
    return answer<HostFunction::VexaUtilDataSetAddJournalCommand>(
        [=](HostState& host) -> VexaBoolean {
            const auto answer = answerToJournaling(host.answers, addOnId, command, journalData);
            if (!answer.isKept) return answer.isAccepted;
            JournalEntry entry{addOnId, command, std::nullopt};
            if (journalData != nullptr) entry.journalData = journalData;
            host.journal.append(entry);
            if (const auto keep = host.keepJournaled.copy()) keep(entry);
            return 1;
        },
        addOnId, command, journalData);
}

char* VexaUtilStringAlloc(int size, const char* purpose) {
    return answer<HostFunction::VexaUtilStringAlloc>(
        [=](HostState& host) -> char* {
            if (!isStringGiven(host.answers, size, purpose)) return nullptr;
            auto string = std::make_shared<HostString>(static_cast<std::size_t>(std::max(size, 0)));
            char* const bytes = string->bytes();
            host.strings.add(bytes, std::move(string));
            return bytes;
        },
        size, purpose);
}

void VexaUtilStringDealloc(char** string) {
    answer<HostFunction::VexaUtilStringDealloc>(
        [=](HostState& host) { release(host.strings, string, host.answers.truth(Fact::StringDeallocClearsHandle)); },
        string);
}

ArgList_s* VexaUtilArgListAlloc() {
    return answer<HostFunction::VexaUtilArgListAlloc>([](HostState& host) { return allocate(host.argLists); });
}

void VexaUtilArgListDealloc(ArgList_s** argList) {
    answer<HostFunction::VexaUtilArgListDealloc>(
        [=](HostState& host) { release(host.argLists, argList, host.answers.truth(Fact::ListDeallocClearsHandle)); },
        argList);
}

void VexaUtilArgListClear(ArgList_s* argList) {
    answer<HostFunction::VexaUtilArgListClear>(
        [=](HostState& host) {
            if (const auto found = host.argLists.find(argList)) found->clear();
        },
        argList);
}

VexaBoolean VexaUtilArgListAppendString(ArgList_s* argList, const char* name, const char* value) {
    return answer<HostFunction::VexaUtilArgListAppendString>(
        [=](HostState& host) { return append(host, argList, name, value); }, argList, name, value);
}

VexaBoolean VexaUtilArgListAppendInt(ArgList_s* argList, const char* name, long value) {
    return answer<HostFunction::VexaUtilArgListAppendInt>(
        [=](HostState& host) { return append(host, argList, name, value); }, argList, name, value);
}

VexaBoolean VexaUtilArgListAppendDoublePtr(ArgList_s* argList, const char* name, double* value) {
    return answer<HostFunction::VexaUtilArgListAppendDoublePtr>(
        [=](HostState& host) { return append(host, argList, name, value); }, argList, name, value);
}

VexaBoolean VexaUtilArgListAppendArbParamPtr(ArgList_s* argList, const char* name, VexaArbParam* value) {
    return answer<HostFunction::VexaUtilArgListAppendArbParamPtr>(
        [=](HostState& host) { return append(host, argList, name, value); }, argList, name, value);
}

GetValueReturnCode_e VexaUtilStyleGetLowLevelX(ArgList_s* argList) {
    return answer<HostFunction::VexaUtilStyleGetLowLevelX>(
        [=](HostState& host) {
            const auto list = host.argLists.find(argList);
            return list == nullptr ? GetValueReturnCode_UnknownPath : answerQuery(host, *list);
        },
        argList);
}

void VexaUtilDialogErrMsg(const char* message) {
    answer<HostFunction::VexaUtilDialogErrMsg>(
        [=](HostState& host) {
            if (message == nullptr) return;
            host.dialogs.append(std::string(message));
            if (const auto show = host.showDialog.copy()) show(message);
        },
        message);
}

Set_s* VexaUtilSetAlloc() {
    return answer<HostFunction::VexaUtilSetAlloc>([](HostState& host) { return allocate(host.sets); });
}

void VexaUtilSetDealloc(Set_s** set) {
    answer<HostFunction::VexaUtilSetDealloc>(
        [=](HostState& host) { release(host.sets, set, host.answers.truth(Fact::SetDeallocClearsHandle)); }, set);
}

VexaBoolean VexaUtilSetInsert(Set_s* set, int64_t first, int64_t last) {
    return answer<HostFunction::VexaUtilSetInsert>(
        [=](HostState& host) -> VexaBoolean {
            const auto found = host.sets.find(set);
            return found != nullptr && found->insert(first, last, host.answers);
        },
        set, first, last);
}

VexaBoolean VexaUtilSetNextRange(const Set_s* set, int64_t from, int64_t* first, int64_t* last) {
    return answer<HostFunction::VexaUtilSetNextRange>(
        [=](HostState& host) -> VexaBoolean {
            const auto own = host.sets.find(set);
            const auto found = own == nullptr ? host.styleSets.find(set) : own;
            if (found == nullptr || first == nullptr || last == nullptr) return 0;
            return found->nextRange(from, *first, *last, host.answers);
        },
        set, from, first, last);
}

}  // extern "C"
