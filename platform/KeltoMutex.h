#pragma once

#include "platform/ThreadSafety.h"

#include <memory>
#include <mutex>

/// A recursive lock. Copies are handles to the same lock, which is destroyed with the last of them. Moving
/// copies too, so a moved-from handle stays usable.
///
/// A thread that holds the lock may lock it again and must unlock it as often. Every class that guards data
/// with one holds it as a plain member and takes it through a KeltoGuard.
class KELTO_CAPABILITY("mutex") KeltoMutex {
public:
    /// A new lock, free.
    KeltoMutex() : m_lock(std::make_shared<std::recursive_mutex>()) {}

    /// Blocks until the lock is held. Thread: any.
    void lock() KELTO_ACQUIRE() { m_lock->lock(); }

    /// Thread: the one that holds it.
    void unlock() KELTO_RELEASE() { m_lock->unlock(); }

    /// Takes the lock if it is free or held by this thread already. Returns whether it did. Thread: any.
    [[nodiscard]] bool tryLock() KELTO_TRY_ACQUIRE(true) { return m_lock->try_lock(); }

private:
    const std::shared_ptr<std::recursive_mutex> m_lock; // constant, so that a move copies it
};

/// Holds a lock from its construction to the end of its block, on every way out.
template <typename Mutex>
class KELTO_SCOPED_CAPABILITY ScopedGuard {
public:
    explicit ScopedGuard(Mutex& mutex) KELTO_ACQUIRE(mutex) : m_mutex(mutex) { m_mutex.lock(); }
    ~ScopedGuard() KELTO_RELEASE() { m_mutex.unlock(); }

    ScopedGuard(const ScopedGuard&) = delete;
    ScopedGuard& operator=(const ScopedGuard&) = delete;

private:
    Mutex& m_mutex;
};

using KeltoGuard = ScopedGuard<KeltoMutex>;
