#include "platform/os/LocalListener.h"
#include "platform/os/InterruptibleDescriptor.h"

#include "tests/support/ProbedThread.h"

#include <fstream>

namespace {

class LocalListener : public DeviceRootTest {
protected:
    std::string path() const { return root() / "socket"; }
};

TEST_F(LocalListener, AcceptsWhoConnectsUntilItIsClosed) {
    os::LocalListener listener(path());
    ASSERT_TRUE(listener.isOpen());
    const os::Descriptor near = os::openDevice(path());
    EXPECT_TRUE(near.isOpen());
    EXPECT_TRUE(listener.accept().isOpen());
    {
        const ProbedThread accepting([&] { EXPECT_FALSE(listener.accept().isOpen()); });
        EXPECT_TRUE(accepting.fallsAsleep());
        listener.close();
    }
    EXPECT_FALSE(os::openDevice(path()).isOpen());
    EXPECT_FALSE(listener.accept().isOpen());
}

TEST_F(LocalListener, TakesThePlaceOfADesertedSocketAndOfNothingElse) {
    const std::string other = root() / "other";
    {
        const os::LocalListener killed(path());
        std::filesystem::create_hard_link(path(), other); // which stays, as after a kill
    }
    EXPECT_TRUE(std::filesystem::is_socket(other));
    EXPECT_TRUE(os::LocalListener(other).isOpen());

    os::LocalListener alive(path());
    EXPECT_EQ(os::LocalListener(path()).failure(), "it is taken by another server");
    EXPECT_TRUE(os::openDevice(path()).isOpen());
    EXPECT_TRUE(alive.accept().isOpen()) << "it has not seen the other one";

    std::ofstream(other) << "a file";
    EXPECT_EQ(os::LocalListener(other).failure(), "another file is there");
    EXPECT_TRUE(std::filesystem::is_regular_file(other));
    EXPECT_EQ(os::LocalListener(root() / "no folder/socket").failure(), "No such file or directory");
    EXPECT_EQ(os::LocalListener(root() / std::string(108, 'l')).failure(),
              "the path is too long for a socket");
}

} // namespace
