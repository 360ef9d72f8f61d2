/// \file
/// Guards around the host's begin and end calls: each makes the begin call when it is constructed and the end call when
/// it is destroyed, however the scope is left.
///
///     const AddOnIdLock lock(addOnId);     // name it: a temporary ends at once
///     const DataSetSuspendMarking pause;
///     changeManyZones();
///
/// Nesting: the host counts; the guards do not.
/// Errors:  none reported. A host that throws from an end call ends the program.
/// Threads: no locking of their own. Use a guard on the thread that the host called.
/// Cost:    the two host calls.
#pragma once

#include "vexautilutil/Export.h"

struct AddOnList_s;

namespace vexa::vexautilutil {

/// Holds the host's lock for an add-on: `VexaUtilLockStart`, `VexaUtilLockFinish`.
class VEXAUTILUTIL_API AddOnIdLock {
public:
    /// Takes the lock.
    /// \param addOnId the add-on's identity, passed to both calls as it is, null included.
    [[nodiscard]] explicit AddOnIdLock(AddOnList_s* addOnId);
    AddOnIdLock(const AddOnIdLock&) = delete;
    AddOnIdLock& operator=(const AddOnIdLock&) = delete;
    /// Gives the lock back.
    ~AddOnIdLock();

private:
    AddOnList_s* m_addOnId;
};

/// Holds back the host's broadcasts of auxiliary data: `VexaUtilAuxDataBeginAssign`, `VexaUtilAuxDataEndAssign`.
class VEXAUTILUTIL_API AuxDataSuspendBroadcast {
public:
    [[nodiscard]] AuxDataSuspendBroadcast();
    AuxDataSuspendBroadcast(const AuxDataSuspendBroadcast&) = delete;
    AuxDataSuspendBroadcast& operator=(const AuxDataSuspendBroadcast&) = delete;
    ~AuxDataSuspendBroadcast();
};

/// Keeps the host from marking data sets as changed: `VexaUtilDataSetSuspendMarking` with 1, then with 0.
class VEXAUTILUTIL_API DataSetSuspendMarking {
public:
    [[nodiscard]] DataSetSuspendMarking();
    DataSetSuspendMarking(const DataSetSuspendMarking&) = delete;
    DataSetSuspendMarking& operator=(const DataSetSuspendMarking&) = delete;
    ~DataSetSuspendMarking();
};

/// Defers the host's notifications of solution times: `VexaUtilZoneSolutionTimeModificationBegin`, `...End`.
class VEXAUTILUTIL_API SolutionTimeNotificationDeferrer {
public:
    [[nodiscard]] SolutionTimeNotificationDeferrer();
    SolutionTimeNotificationDeferrer(const SolutionTimeNotificationDeferrer&) = delete;
    SolutionTimeNotificationDeferrer& operator=(const SolutionTimeNotificationDeferrer&) = delete;
    ~SolutionTimeNotificationDeferrer();
};

}  // namespace vexa::vexautilutil
