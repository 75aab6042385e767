#include "tests/support/LoopbackPort.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

LoopbackPort::LoopbackPort() : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    EXPECT_EQ(::bind(m_socket.value(), generic, size), 0);
    EXPECT_EQ(::getsockname(m_socket.value(), generic, &size), 0);
    m_number = ntohs(address.sin_port);
}

void LoopbackPort::listen(int waiting) { EXPECT_EQ(::listen(m_socket.value(), waiting), 0); }

os::Descriptor LoopbackPort::accept() const {
    return os::Descriptor(::accept4(m_socket.value(), nullptr, nullptr, SOCK_CLOEXEC));
}
