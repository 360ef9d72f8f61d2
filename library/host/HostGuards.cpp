#include "vexautilutil/HostGuards.h"

#include "vexa/VexaUtil.h"

namespace vexa::vexautilutil {

AddOnIdLock::AddOnIdLock(AddOnList_s* addOnId) : m_addOnId(addOnId) { VexaUtilLockStart(addOnId); }

AddOnIdLock::~AddOnIdLock() { VexaUtilLockFinish(m_addOnId); }

AuxDataSuspendBroadcast::AuxDataSuspendBroadcast() { VexaUtilAuxDataBeginAssign(); }

AuxDataSuspendBroadcast::~AuxDataSuspendBroadcast() { VexaUtilAuxDataEndAssign(); }

DataSetSuspendMarking::DataSetSuspendMarking() { VexaUtilDataSetSuspendMarking(1); }

DataSetSuspendMarking::~DataSetSuspendMarking() { VexaUtilDataSetSuspendMarking(0); }

SolutionTimeNotificationDeferrer::SolutionTimeNotificationDeferrer() { VexaUtilZoneSolutionTimeModificationBegin(); }

SolutionTimeNotificationDeferrer::~SolutionTimeNotificationDeferrer() { VexaUtilZoneSolutionTimeModificationEnd(); }

}  // namespace vexa::vexautilutil
