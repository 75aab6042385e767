#pragma once

#include "platform/Socket.h"
#include "platform/os/InterruptibleDescriptor.h"

#include <atomic>
#include <chrono>
#include <system_error>

/// The client's end of a TCP connection, made by SocketFactory. There is no reconnecting: its owner makes
/// another one.
///
/// Unlike other streams it may be closed while another thread is inside read() or write(), which then fails.
class WindowsTCPClientSocket final : public Socket {
public:
    /// Connects to the peer; ask isConnected() afterwards. A write may go @p stallLimit without progress.
    /// Blocks at most for os::kConnectLimit.
    WindowsTCPClientSocket(const IPv4Address& address, std::uint16_t port,
                           std::chrono::milliseconds stallLimit = os::InterruptibleDescriptor::kStallLimit);

    /// As close(). Requires: no call begins any more.
    ~WindowsTCPClientSocket() override;

    /// Returns whether neither close() nor a failed transfer has ended the connection. Thread: any.
    [[nodiscard]] bool isConnected() const { return m_connected; }

    /// Fills the buffer. Returns @p size; fewer where the peer has closed the connection after some bytes;
    /// StreamRetry where the connection was aborted or timed out; StreamFailed for every other failure, the
    /// peer's end before the first byte included: the socket is not connected from then on. What came before
    /// a failure is lost. Blocks until one of these, or until the socket is closed.
    [[nodiscard]] std::int32_t read(void* buffer, std::int32_t size) override;

    /// Returns @p size. Returns StreamRetry if no byte was sent because the connection was aborted, had no
    /// room or took no byte for 5 seconds; the socket stays usable. Returns StreamFailed for every other
    /// failure, which includes each failure after the first byte; the socket is not connected from then on.
    /// Blocks until one of these, or until the socket is closed.
    [[nodiscard]] std::int32_t write(const void* buffer, std::int32_t size) override;

    /// Thread: any. Blocks for the moment that the calls under way need to leave.
    void close() override;

private:
    [[nodiscard]] std::int32_t failed(std::error_code failure);
    [[nodiscard]] std::int32_t lost();

    os::InterruptibleDescriptor m_socketHandle;
    std::atomic<bool> m_connected;
};
