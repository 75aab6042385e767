#pragma once

#include "platform/Stream.h"
#include "platform/os/InterruptibleDescriptor.h"

#include <string>

/// A stream over a device of the printer, such as "PRN0:".
///
/// Unlike other streams it may be closed while another thread is inside read() or write(), which then fails.
class OXPLStreamDriverInterface final : public Stream {
public:
    /// Opens the device at @p path (os::devicePath()) for reading and writing. Ask isOpen() afterwards. Does
    /// not block.
    OXPLStreamDriverInterface(std::wstring path, std::uint32_t kind);

    /// As close(). Requires: no call begins any more.
    ~OXPLStreamDriverInterface() override;

    /// Returns whether the device is open. Thread: any.
    [[nodiscard]] bool isOpen() const;

    /// Returns the number of bytes that one reading of the device gave, 0 where the other side has gone, or
    /// StreamFailed. Blocks until a byte comes or the stream is closed.
    [[nodiscard]] std::int32_t read(void* buffer, std::int32_t size) override;

    /// Returns @p size, or StreamFailed, which may come after some bytes have gone out. Blocks until all
    /// have, or the stream is closed, or the device takes none for 5 seconds.
    [[nodiscard]] std::int32_t write(const void* buffer, std::int32_t size) override;

    /// Thread: any. Blocks for the moment that the calls under way need to leave.
    void close() override;

private:
    os::InterruptibleDescriptor m_handle;
};
