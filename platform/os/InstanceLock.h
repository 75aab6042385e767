#pragma once

#include "platform/os/Descriptor.h"

#include <string_view>

namespace os {

/// Lets one process of a kind run on a device root. The host ends the claim with the process, however that
/// ends.
class InstanceLock {
public:
    /// Claims the place of the one instance of @p programName on this device root. Does not block. Thread:
    /// any.
    explicit InstanceLock(std::string_view programName);

    /// Returns whether another process holds the place. Where the host cannot tell (the device root is not
    /// writable) the answer is false: the program runs rather than leave the printer without it.
    [[nodiscard]] bool isHeldByAnother() const { return m_heldByAnother; }

private:
    Descriptor m_file;
    bool m_heldByAnother = false;
};

} // namespace os
