/// \file
/// Guards for the host's paired calls. The constructor makes the first call, the destructor makes the second, also when
/// the scope ends by a return or an exception.
///
///     const AddOnIdLock lock(addOnId);     // name it: an unnamed guard is destroyed at once
///     const DataSetSuspendMarking pause;
///     changeManyZones();
///
/// Nesting: guards of one class may nest. The host counts the calls.
/// Errors:  none reported. If the host throws from the second call, the program ends.
/// Threads: the guards use no lock of their own. Use a guard on the thread on which the host called the add-on.
/// Cost:    the two host calls.
#pragma once

#include "vexautilutil/Export.h"

struct AddOnList_s;

namespace vexa::vexautilutil {

/// Holds the host's lock for an add-on. Calls `VexaUtilLockStart`, then `VexaUtilLockFinish`.
class VEXAUTILUTIL_API AddOnIdLock {
public:
    /// Takes the lock.
    /// \param addOnId the add-on's identity, passed unchanged to both calls. It may be null.
    [[nodiscard]] explicit AddOnIdLock(AddOnList_s* addOnId);
    AddOnIdLock(const AddOnIdLock&) = delete;
    AddOnIdLock& operator=(const AddOnIdLock&) = delete;
    /// Releases the lock.
    ~AddOnIdLock();

private:
    AddOnList_s* m_addOnId;
};

/// Suspends the host's broadcasts of auxiliary data. Calls `VexaUtilAuxDataBeginAssign`, then
/// `VexaUtilAuxDataEndAssign`.
class VEXAUTILUTIL_API AuxDataSuspendBroadcast {
public:
    [[nodiscard]] AuxDataSuspendBroadcast();
    AuxDataSuspendBroadcast(const AuxDataSuspendBroadcast&) = delete;
    AuxDataSuspendBroadcast& operator=(const AuxDataSuspendBroadcast&) = delete;
    ~AuxDataSuspendBroadcast();
};

/// Stops the host from marking data sets as changed. Calls `VexaUtilDataSetSuspendMarking` with 1, then with 0.
class VEXAUTILUTIL_API DataSetSuspendMarking {
public:
    [[nodiscard]] DataSetSuspendMarking();
    DataSetSuspendMarking(const DataSetSuspendMarking&) = delete;
    DataSetSuspendMarking& operator=(const DataSetSuspendMarking&) = delete;
    ~DataSetSuspendMarking();
};

/// Defers the host's notifications about solution times. Calls `VexaUtilZoneSolutionTimeModificationBegin`, then
/// `VexaUtilZoneSolutionTimeModificationEnd`.
class VEXAUTILUTIL_API SolutionTimeNotificationDeferrer {
public:
    [[nodiscard]] SolutionTimeNotificationDeferrer();
    SolutionTimeNotificationDeferrer(const SolutionTimeNotificationDeferrer&) = delete;
    SolutionTimeNotificationDeferrer& operator=(const SolutionTimeNotificationDeferrer&) = delete;
    ~SolutionTimeNotificationDeferrer();
};

}  // namespace vexa::vexautilutil
