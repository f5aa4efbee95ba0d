// The scene store's lock.  It exists exactly while the pre-scan dialog's
// window does: created when the dialog initialises, deleted when its window
// is destroyed.
//
// A host thread may call the scene feed at any moment, also while the dialog
// is being destroyed.  So that the feed never enters a deleted lock, every
// entry goes through TryEnterAlive().  A small gate that lives as long as the
// process guards the lock's life flag and a count of its users: an entry
// checks the flag and counts itself under the gate, then waits for the lock
// outside the gate (so a thread holding the lock for long, as the file dialog
// does, never blocks the gate), and checks the flag again once inside.
// Delete() clears the flag under the gate and deletes the lock only when the
// last user has left, waiting on an event for that; late callers see the
// cleared flag and do nothing.
#pragma once

namespace qv {

class SceneLock {
public:
    SceneLock();
    ~SceneLock();
    SceneLock(const SceneLock&) = delete;
    SceneLock& operator=(const SceneLock&) = delete;

    void Create();
    void Delete();
    bool IsAlive() const;

    // Enters only a living lock; false when it has been deleted (or never
    // made).  Leave() exactly once after each entry that returned true.
    bool TryEnterAlive();
    void Leave();

private:
    struct Impl;
    Impl* m_impl;
};

// Holds the lock for a scope, when it is alive.
class SceneLockGuard {
public:
    explicit SceneLockGuard(SceneLock& lock) : m_lock(lock), m_held(lock.TryEnterAlive()) {}
    ~SceneLockGuard()
    {
        if (m_held) m_lock.Leave();
    }
    bool Held() const { return m_held; }
    SceneLockGuard(const SceneLockGuard&) = delete;
    SceneLockGuard& operator=(const SceneLockGuard&) = delete;

private:
    SceneLock& m_lock;
    bool m_held;
};

} // namespace qv
