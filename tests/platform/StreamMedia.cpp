#include "tests/platform/StreamMedia.h"

#include "platform/FileStream.h"
#include "platform/OXPLStreamDriverInterface.h"
#include "platform/SocketFactory.h"
#include "tests/support/DeviceRootTest.h"
#include "tests/support/LoopbackPort.h"
#include "tests/support/PrinterDevice.h"

#include <fstream>
#include <iterator>
#include <sys/socket.h>
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

/// A connection whose other side the test holds in its hand.
class TwoSidedMedium : public StreamMedium {
public:
    std::unique_ptr<Stream> reader(const std::string& bytes) override {
        auto stream = writer();
        EXPECT_EQ(::write(m_other.value(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
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
    os::Descriptor m_other;
};

class DeviceMedium final : public TwoSidedMedium {
public:
    explicit DeviceMedium(std::unique_ptr<PrinterDevice> device) : m_device(std::move(device)) {}

    std::unique_ptr<Stream> writer() override {
        auto stream = std::make_unique<OXPLStreamDriverInterface>(L"PRN0:", kFileOrDeviceStream);
        EXPECT_TRUE(stream->isOpen());
        m_other = m_device->takeOtherSide();
        return stream;
    }

private:
    std::unique_ptr<PrinterDevice> m_device;
};

class TcpMedium final : public TwoSidedMedium {
public:
    TcpMedium() { m_port.listen(); }

    std::unique_ptr<Stream> reader(const std::string& bytes) override {
        auto stream = TwoSidedMedium::reader(bytes);
        EXPECT_EQ(::shutdown(m_other.value(), SHUT_WR), 0); // or a read would wait for all it asked for
        return stream;
    }
    std::unique_ptr<Stream> writer() override {
        auto stream = SocketFactory().createClientSocket(IPv4Address("127.0.0.1"), m_port.number());
        EXPECT_TRUE(stream);
        m_other = m_port.accept();
        return stream;
    }

private:
    LoopbackPort m_port;
};

} // namespace

std::unique_ptr<StreamMedium> makeFileMedium(const std::filesystem::path& root) {
    return std::make_unique<FileMedium>(root);
}

std::unique_ptr<StreamMedium> makeSocketMedium(const std::filesystem::path& root) {
    return std::make_unique<DeviceMedium>(makeSocketDevice(root));
}

std::unique_ptr<StreamMedium> makeTerminalMedium(const std::filesystem::path& root) {
    return std::make_unique<DeviceMedium>(makeTerminalDevice(root));
}

std::unique_ptr<StreamMedium> makeTcpMedium(const std::filesystem::path& /*root*/) {
    return std::make_unique<TcpMedium>();
}
