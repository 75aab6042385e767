#include "platform/SocketFactory.h"

std::unique_ptr<WindowsTCPClientSocket> SocketFactory::createClientSocket(const IPv4Address& address,
                                                                          std::uint16_t port) const {
    auto socket = std::make_unique<WindowsTCPClientSocket>(address, port);
    return socket->isConnected() ? std::move(socket) : nullptr;
}
