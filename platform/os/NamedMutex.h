#pragma once

#include "platform/os/Descriptor.h"

#include <mutex>
#include <string_view>
#include <system_error>

namespace os {

/// A named mutex between processes and between the threads of this one; not recursive.
///
/// The host frees it when the process that holds it dies, so there is no abandoned state to repair. An object
/// that could not be opened still excludes the threads that share it, and nobody else.
class NamedMutex {
public:
    /// Makes the mutex called @p name, or opens it if it exists, not owned. Thread: any.
    explicit NamedMutex(std::string_view name);

    /// Returns why the mutex is absent; no error if it is there.
    [[nodiscard]] std::error_code failure() const { return m_failure; }

    /// Blocks until the mutex is free, without limit. Thread: any that does not hold it.
    void lock();

    /// Locks the mutex if it is free and returns whether it did. Does not block. Requires: the mutex is
    /// present and not held by this thread.
    [[nodiscard]] bool tryLock();

    /// Thread: the one that holds it.
    void unlock();

private:
    std::error_code m_failure;
    Descriptor m_file;
    std::mutex m_inProcess;
};

} // namespace os
