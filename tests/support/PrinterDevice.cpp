#include "tests/support/PrinterDevice.h"

#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

std::filesystem::path devicePathIn(const std::filesystem::path& root) {
    std::filesystem::create_directory(root / "dev");
    return root / "dev" / "PRN0";
}

class SocketDevice final : public PrinterDevice {
public:
    explicit SocketDevice(const std::filesystem::path& root)
        : m_listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, devicePathIn(root).c_str(), sizeof address.sun_path - 1);
        const auto* generic = reinterpret_cast<const sockaddr*>(&address);
        EXPECT_EQ(::bind(m_listener.value(), generic, sizeof address), 0);
        EXPECT_EQ(::listen(m_listener.value(), 1), 0);
    }

    os::Descriptor takeOtherSide() override {
        return os::Descriptor(::accept4(m_listener.value(), nullptr, nullptr, SOCK_CLOEXEC));
    }

private:
    os::Descriptor m_listener;
};

class TerminalDevice final : public PrinterDevice {
public:
    explicit TerminalDevice(const std::filesystem::path& root)
        : m_other(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        EXPECT_EQ(::grantpt(m_other.value()), 0);
        EXPECT_EQ(::unlockpt(m_other.value()), 0);
        char name[64] = {};
        EXPECT_EQ(::ptsname_r(m_other.value(), name, sizeof name), 0);
        std::filesystem::create_symlink(name, devicePathIn(root));
    }

    os::Descriptor takeOtherSide() override {
        return os::Descriptor(::fcntl(m_other.value(), F_DUPFD_CLOEXEC, 0));
    }

private:
    os::Descriptor m_other;
};

} // namespace

std::unique_ptr<PrinterDevice> makeSocketDevice(const std::filesystem::path& root) {
    return std::make_unique<SocketDevice>(root);
}

std::unique_ptr<PrinterDevice> makeTerminalDevice(const std::filesystem::path& root) {
    return std::make_unique<TerminalDevice>(root);
}
