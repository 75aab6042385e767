#include "platform/WindowsTCPClientSocket.h"

#include "platform/os/TcpConnection.h"

WindowsTCPClientSocket::WindowsTCPClientSocket(const IPv4Address& address, std::uint16_t port,
                                               std::chrono::milliseconds stallLimit)
    : Socket(address, port),
      m_socketHandle(os::openTcpConnection(address.toUInt32(), port), stallLimit),
      m_connected(m_socketHandle.isOpen()) {}

WindowsTCPClientSocket::~WindowsTCPClientSocket() { WindowsTCPClientSocket::close(); }

std::int32_t WindowsTCPClientSocket::read(void* buffer, std::int32_t size) {
    char* bytes = static_cast<char*>(buffer);
    std::int32_t total = 0;
    while (total < size) {
        const os::Transfer got = m_socketHandle.read(bytes + total, static_cast<std::size_t>(size - total));
        if (got.failure)
            return failed(got.failure);
        if (got.count == 0)
            return total > 0 ? total : lost();
        total += static_cast<std::int32_t>(got.count);
    }
    return total;
}

std::int32_t WindowsTCPClientSocket::write(const void* buffer, std::int32_t size) {
    const os::Transfer sent = m_socketHandle.write(buffer, static_cast<std::size_t>(size));
    if (sent.failure && sent.count > 0)
        return lost(); // the handle refuses every later write
    if (sent.failure == std::errc::no_buffer_space)
        return StreamRetry;
    return sent.failure ? failed(sent.failure) : static_cast<std::int32_t>(sent.count);
}

void WindowsTCPClientSocket::close() {
    m_connected = false;
    m_socketHandle.close();
}

std::int32_t WindowsTCPClientSocket::failed(std::error_code failure) {
    const bool passes = failure == std::errc::connection_aborted || failure == std::errc::timed_out;
    return passes ? StreamRetry : lost();
}

std::int32_t WindowsTCPClientSocket::lost() {
    m_connected = false;
    return StreamFailed;
}
