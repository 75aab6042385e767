#include "tests/platform/StreamMedia.h"

#include "tests/support/DeviceRootTest.h"

#include "platform/FileStream.h"
#include "platform/OXPLStreamDriverInterface.h"
#include "platform/os/Descriptor.h"

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <sys/socket.h>
#include <sys/un.h>
#include <termios.h>
#include <unistd.h>

namespace {

class FileMedium final : public StreamMedium {
public:
    explicit FileMedium(const std::filesystem::path& root) : m_folder(root / "store") {
        std::filesystem::create_directory(m_folder);
    }

    std::unique_ptr<Stream> reader(const std::string& bytes) override {
        std::ofstream(m_folder / "in", std::ios::binary) << bytes;
        return std::make_unique<FileStream>(L"/store\\in", FileRead);
    }
    std::unique_ptr<Stream> writer() override {
        return std::make_unique<FileStream>(L"/Store/out", FileWrite | FileTruncate);
    }
    std::string take(std::size_t count) override {
        EXPECT_TRUE(eventually([&] { return std::filesystem::file_size(m_folder / "out") >= count; }));
        std::ifstream file(m_folder / "out", std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path m_folder;
};

/// A device whose other side the test holds in its hand.
class DeviceMedium : public StreamMedium {
public:
    std::unique_ptr<Stream> reader(const std::string& bytes) override {
        auto stream = writer();
        EXPECT_EQ(::write(m_other.value(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
        return stream;
    }
    std::unique_ptr<Stream> writer() override {
        auto stream = std::make_unique<OXPLStreamDriverInterface>(L"PRN0:", kFileOrDeviceStream);
        EXPECT_TRUE(stream->isOpen());
        takeOtherSide();
        return stream;
    }
    std::string take(std::size_t count) override {
        std::string result(count, '\0');
        std::size_t got = 0;
        while (got < count) {
            const ssize_t n = ::read(m_other.value(), &result[got], count - got);
            if (n <= 0)
                break;
            got += static_cast<std::size_t>(n);
        }
        result.resize(got);
        return result;
    }

protected:
    explicit DeviceMedium(const std::filesystem::path& root) : m_path(root / "dev" / "PRN0") {
        std::filesystem::create_directory(m_path.parent_path());
    }
    virtual void takeOtherSide() {}

    std::filesystem::path m_path;
    os::Descriptor m_other;
};

class SocketMedium final : public DeviceMedium {
public:
    explicit SocketMedium(const std::filesystem::path& root)
        : DeviceMedium(root), m_listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, m_path.c_str(), sizeof address.sun_path - 1);
        const auto* generic = reinterpret_cast<const sockaddr*>(&address);
        EXPECT_EQ(::bind(m_listener.value(), generic, sizeof address), 0);
        EXPECT_EQ(::listen(m_listener.value(), 1), 0);
    }

private:
    void takeOtherSide() override {
        m_other = os::Descriptor(::accept(m_listener.value(), nullptr, nullptr));
    }

    os::Descriptor m_listener;
};

class TerminalMedium final : public DeviceMedium {
public:
    explicit TerminalMedium(const std::filesystem::path& root) : DeviceMedium(root) {
        m_other = os::Descriptor(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
        EXPECT_EQ(::grantpt(m_other.value()), 0);
        EXPECT_EQ(::unlockpt(m_other.value()), 0);
        char name[64] = {};
        EXPECT_EQ(::ptsname_r(m_other.value(), name, sizeof name), 0);
        m_kept = os::Descriptor(::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC));
        termios settings{};
        EXPECT_EQ(::tcgetattr(m_kept.value(), &settings), 0);
        ::cfmakeraw(&settings);
        EXPECT_EQ(::tcsetattr(m_kept.value(), TCSANOW, &settings), 0);
        std::filesystem::create_symlink(name, m_path);
    }

private:
    os::Descriptor m_kept; // or the settings would go with the last to close it
};

} // namespace

std::unique_ptr<StreamMedium> makeFileMedium(const std::filesystem::path& root) {
    return std::make_unique<FileMedium>(root);
}

std::unique_ptr<StreamMedium> makeSocketMedium(const std::filesystem::path& root) {
    return std::make_unique<SocketMedium>(root);
}

std::unique_ptr<StreamMedium> makeTerminalMedium(const std::filesystem::path& root) {
    return std::make_unique<TerminalMedium>(root);
}
