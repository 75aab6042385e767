#include "tests/platform/StreamMedia.h"
#include "tests/support/DeviceRootTest.h"
#include "tests/support/ProbedThread.h"

#include "platform/OXPLStreamDriverInterface.h"

#include <array>
#include <sys/stat.h>

namespace {

class DeviceStreams : public DeviceRootTest {};

TEST_F(DeviceStreams, AreNotOpenWhereNoDeviceIs) {
    std::filesystem::create_directory(root() / "dev");
    std::ofstream(root() / "dev/FILE") << "x";
    ASSERT_EQ(::mkfifo((root() / "dev/PIPE").c_str(), 0600), 0);
    { makeSocketMedium(root()); } // its socket file stays behind, and nobody listens
    for (const wchar_t* name : {L"PRN1:", L"FILE:", L"PIPE:", L"PRN0:", L""}) {
        OXPLStreamDriverInterface stream(name, kFileOrDeviceStream);
        char byte = 0;
        EXPECT_FALSE(stream.isOpen()) << name;
        EXPECT_EQ(stream.read(&byte, 1), StreamFailed) << name;
        EXPECT_EQ(stream.write(&byte, 1), StreamFailed) << name;
    }
}

TEST_F(DeviceStreams, EndABlockedReadAndABlockedWriteAtClose) {
    for (const auto& make : {makeSocketMedium, makeTerminalMedium}) {
        std::filesystem::remove_all(root() / "dev");
        const auto medium = make(root());
        const auto stream = medium->writer();
        std::atomic<std::int32_t> read = 0;
        std::atomic<std::int32_t> written = 0;
        {
            const ProbedThread reading([&] {
                char byte = 0;
                read = stream->read(&byte, 1);
            });
            const ProbedThread writing(
                [&] { written = stream->writeBytes(std::vector<std::uint8_t>(10'000'000)); });
            EXPECT_TRUE(reading.fallsAsleep());
            EXPECT_TRUE(writing.fallsAsleep());
            stream->close();
        }
        EXPECT_EQ(read, StreamFailed);
        EXPECT_EQ(written, StreamFailed);
    }
}

} // namespace
