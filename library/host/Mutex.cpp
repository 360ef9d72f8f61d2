#include "vexautilutil/Mutex.h"

#include <new>

#include "vexa/VexaUtil.h"

namespace vexa::vexautilutil {

Mutex::Mutex() : m_handle(VexaUtilThreadMutexAlloc()) {
    if (m_handle == nullptr) throw std::bad_alloc();
}

Mutex::~Mutex() { VexaUtilThreadMutexDealloc(&m_handle); }

void Mutex::lock() { VexaUtilThreadMutexLock(m_handle); }

void Mutex::unlock() { VexaUtilThreadMutexUnlock(m_handle); }

}  // namespace vexa::vexautilutil
