#include "platform/os/Descriptor.h"

#include <fcntl.h>
#include <unistd.h>

namespace os {

Descriptor::~Descriptor() {
    // Not retried: Linux gives the number back even when a signal interrupts the call.
    if (isOpen())
        ::close(m_value);
}

Descriptor Descriptor::duplicate() const { return Descriptor(::fcntl(m_value, F_DUPFD_CLOEXEC, 0)); }

} // namespace os
