#include "platform/os/NamedMutex.h"

#include "platform/os/linux/ObjectFile.h"
#include "platform/os/linux/SystemCall.h"

#include <sys/file.h>

namespace os {

NamedMutex::NamedMutex(std::string_view name) : m_file(openOrCreateObject(name, S_IFREG, m_failure)) {}

void NamedMutex::lock() {
    m_inProcess.lock(); // the file's lock does not tell the threads of one process apart
    retried([&] { return ::flock(m_file.value(), LOCK_EX); });
}

bool NamedMutex::tryLock() {
    if (!m_inProcess.try_lock())
        return false;
    if (retried([&] { return ::flock(m_file.value(), LOCK_EX | LOCK_NB); }) == 0)
        return true;
    m_inProcess.unlock();
    return false;
}

void NamedMutex::unlock() {
    retried([&] { return ::flock(m_file.value(), LOCK_UN); });
    m_inProcess.unlock();
}

} // namespace os
