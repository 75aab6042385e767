#include "platform/os/InstanceLock.h"

#include "platform/os/linux/ObjectFile.h"
#include "platform/os/linux/SystemCall.h"

#include <string>
#include <sys/file.h>

namespace os {

InstanceLock::InstanceLock(std::string_view programName) {
    std::error_code why; // without the file every start is the first
    m_file = openOrCreateObject(std::string(programName) + ".instance", S_IFREG, why);
    if (m_file.isOpen())
        m_heldByAnother =
            retried([&] { return ::flock(m_file.value(), LOCK_EX | LOCK_NB); }) != 0 && errno == EWOULDBLOCK;
}

} // namespace os
