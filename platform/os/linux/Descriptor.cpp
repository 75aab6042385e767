#include "platform/os/Descriptor.h"

#include <unistd.h>

namespace os {

Descriptor::~Descriptor() {
    // Not retried: Linux gives the number back even when a signal interrupts the call.
    if (isOpen())
        ::close(m_value);
}

} // namespace os
