#include "tests/platform/StreamMedia.h"
#include "tests/support/DeviceRootTest.h"

#include "platform/OXPLStreamDriverInterface.h"

#include <fstream>
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

} // namespace
