// The scene store's lock for the native build of the portable core: the same
// life rules as on Windows (see SceneLock.h), on a recursive mutex.
#include "platform/SceneLock.h"

#include <condition_variable>
#include <mutex>

namespace qv {

struct SceneLock::Impl {
    std::mutex gate;
    std::condition_variable idle;
    std::recursive_mutex lock;
    bool alive = false;
    long users = 0;
};

SceneLock::SceneLock() : m_impl(new Impl) {}

SceneLock::~SceneLock()
{
    Delete();
    delete m_impl;
}

void SceneLock::Create()
{
    std::lock_guard<std::mutex> g(m_impl->gate);
    m_impl->alive = true;
}

void SceneLock::Delete()
{
    std::unique_lock<std::mutex> g(m_impl->gate);
    m_impl->alive = false;
    m_impl->idle.wait(g, [this] { return m_impl->users == 0; });
}

bool SceneLock::IsAlive() const
{
    std::lock_guard<std::mutex> g(m_impl->gate);
    return m_impl->alive;
}

bool SceneLock::TryEnterAlive()
{
    {
        std::lock_guard<std::mutex> g(m_impl->gate);
        if (!m_impl->alive) return false;
        ++m_impl->users;
    }
    m_impl->lock.lock();
    bool alive;
    {
        std::lock_guard<std::mutex> g(m_impl->gate);
        alive = m_impl->alive;
    }
    if (alive) return true;
    Leave();
    return false;
}

void SceneLock::Leave()
{
    m_impl->lock.unlock();
    std::lock_guard<std::mutex> g(m_impl->gate);
    if (--m_impl->users == 0) m_impl->idle.notify_all();
}

} // namespace qv
