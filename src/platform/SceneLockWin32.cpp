#include "platform/SceneLock.h"

#include <windows.h>

namespace qv {

struct SceneLock::Impl {
    CRITICAL_SECTION gate;   // lives as long as the object; held only briefly
    CRITICAL_SECTION lock;   // lives from Create to Delete
    HANDLE idle;             // set while no one uses the lock
    bool alive = false;
    bool exists = false;     // `lock` is initialised
    bool deleting = false;   // Delete waits for `idle`
    long users = 0;          // entries in progress or held
};

SceneLock::SceneLock() : m_impl(new Impl)
{
    InitializeCriticalSection(&m_impl->gate);
    m_impl->idle = CreateEventA(nullptr, TRUE, TRUE, nullptr);
}

SceneLock::~SceneLock()
{
    Delete();
    CloseHandle(m_impl->idle);
    DeleteCriticalSection(&m_impl->gate);
    delete m_impl;
}

void SceneLock::Create()
{
    EnterCriticalSection(&m_impl->gate);
    if (!m_impl->exists) {
        InitializeCriticalSection(&m_impl->lock);
        m_impl->exists = true;
    }
    m_impl->alive = true;
    LeaveCriticalSection(&m_impl->gate);
}

void SceneLock::Delete()
{
    EnterCriticalSection(&m_impl->gate);
    m_impl->alive = false;
    bool wait = m_impl->users > 0;
    if (wait) {
        ResetEvent(m_impl->idle);
        m_impl->deleting = true;
    }
    LeaveCriticalSection(&m_impl->gate);
    // Users still inside (or queued) leave at once once they see the flag.
    if (wait) WaitForSingleObject(m_impl->idle, INFINITE);
    EnterCriticalSection(&m_impl->gate);
    if (m_impl->exists && m_impl->users == 0 && !m_impl->alive) {
        DeleteCriticalSection(&m_impl->lock);
        m_impl->exists = false;
    }
    LeaveCriticalSection(&m_impl->gate);
}

bool SceneLock::IsAlive() const
{
    return m_impl->alive;
}

bool SceneLock::TryEnterAlive()
{
    EnterCriticalSection(&m_impl->gate);
    if (!m_impl->alive) {
        LeaveCriticalSection(&m_impl->gate);
        return false;
    }
    ++m_impl->users;
    LeaveCriticalSection(&m_impl->gate);

    EnterCriticalSection(&m_impl->lock);
    if (m_impl->alive) return true;
    Leave();  // deleted while we waited
    return false;
}

void SceneLock::Leave()
{
    LeaveCriticalSection(&m_impl->lock);
    EnterCriticalSection(&m_impl->gate);
    // The event is signalled only for a Delete that waits: every entry of the
    // lock would otherwise pay for a kernel call.
    if (--m_impl->users == 0 && m_impl->deleting) {
        m_impl->deleting = false;
        SetEvent(m_impl->idle);
    }
    LeaveCriticalSection(&m_impl->gate);
}

} // namespace qv
