#include "platform/HandleStream.h"
#include "platform/OXPLStreamDriverInterface.h"
#include "property/ExternalAppProperty.h"
#include "property/UInt32Property.h"
#include "tests/picl/Member.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/DeviceRootTest.h"
#include "tests/support/PrinterDevice.h"

#include <condition_variable>
#include <cstring>
#include <mutex>

namespace {

/// Bytes on their way in one direction.
struct Channel {
    std::mutex lock;
    std::condition_variable changed;
    std::string bytes;
    bool closed = false;
};

/// One end of a pipe in memory.
class PipeEnd final : public Stream {
public:
    PipeEnd(std::shared_ptr<Channel> in, std::shared_ptr<Channel> out)
        : m_in(std::move(in)), m_out(std::move(out)) {}

    std::int32_t read(void* buffer, std::int32_t size) override {
        std::unique_lock guard(m_in->lock);
        m_in->changed.wait(guard, [&] { return m_in->closed || !m_in->bytes.empty(); });
        const std::size_t count = std::min(m_in->bytes.size(), static_cast<std::size_t>(size));
        std::memcpy(buffer, m_in->bytes.data(), count);
        m_in->bytes.erase(0, count);
        return static_cast<std::int32_t>(count);
    }

    std::int32_t write(const void* buffer, std::int32_t size) override {
        const std::scoped_lock guard(m_out->lock);
        if (m_out->closed)
            return StreamFailed;
        m_out->bytes.append(static_cast<const char*>(buffer), static_cast<std::size_t>(size));
        m_out->changed.notify_all();
        return size;
    }

    void close() override {
        for (Channel* const channel : {m_in.get(), m_out.get()}) {
            const std::scoped_lock guard(channel->lock);
            channel->closed = true;
            channel->changed.notify_all();
        }
    }

private:
    std::shared_ptr<Channel> m_in;
    std::shared_ptr<Channel> m_out;
};

struct Connection {
    std::shared_ptr<Stream> near;
    std::shared_ptr<Stream> far;
};

Connection pipeIn(const std::filesystem::path&) {
    auto there = std::make_shared<Channel>();
    auto back = std::make_shared<Channel>();
    return {std::make_shared<PipeEnd>(back, there), std::make_shared<PipeEnd>(there, back)};
}

Connection connectionOver(PrinterDevice& device) {
    auto near = std::make_shared<OXPLStreamDriverInterface>(L"PRN0:", kFileOrDeviceStream);
    EXPECT_TRUE(near->isOpen());
    return {near, std::make_shared<HandleStream>(device.takeOtherSide())};
}

Connection socketIn(const std::filesystem::path& root) { return connectionOver(*makeSocketDevice(root)); }

Connection terminalIn(const std::filesystem::path& root) { return connectionOver(*makeTerminalDevice(root)); }

using Number = ExternalAppProperty<UInt32Property, unsigned int>;

std::unique_ptr<Number> externalOf(const Member& asking, const std::string& owner) {
    return std::make_unique<Number>(0U, asking.agent, asking.manager, owner, "N", "a name", "G", "a group",
                                    20000U);
}

struct Kind {
    const char* name;
    Connection (*make)(const std::filesystem::path&);
};

class Members : public DeviceRootTest, public testing::WithParamInterface<Kind> {
protected:
    Members() { std::filesystem::create_directory(root() / "store"); }
};

TEST_P(Members, ShareTheirProperties) {
    const Connection connection = GetParam().make(root());
    Member one("ONE", connection.near);
    Member two("TWO", connection.far);
    const auto first = one.add<UInt32Property>("N", 1U);
    const auto second = two.add<UInt32Property>("N", 2U);
    two.add<StringProperty>("L", std::string(100'000, '"')); // more than a device takes at once
    one.join();
    two.join();

    const auto seenByTwo = externalOf(two, "ONE");
    const auto seenByOne = externalOf(one, "TWO");
    EXPECT_EQ(seenByTwo->getValue(), 1U);
    EXPECT_EQ(seenByOne->getValue(), 2U);

    first->setValue(11); // published
    second->setValue(12);
    EXPECT_TRUE(eventually([&] { return seenByTwo->getValue() == 11 && seenByOne->getValue() == 12; }));
    seenByTwo->setValue(21); // asked for
    seenByOne->setValue(22);
    EXPECT_TRUE(eventually([&] { return first->getValue() == 21 && second->getValue() == 22; }));

    one.manager->removeProperty(first, nullptr);
    EXPECT_TRUE(eventually([&] { return seenByTwo->getValue() == 0; })) << "the default";
    second->setValue(23);
    EXPECT_TRUE(eventually([&] { return seenByOne->getValue() == 23; }));
    one.leave();
    two.awaitEndOfReading();
    EXPECT_EQ(seenByOne->getValue(), 23U) << "what was heard last";
}

INSTANTIATE_TEST_SUITE_P(, Members,
                         testing::Values(Kind{"OverAPipe", pipeIn}, Kind{"OverASocket", socketIn},
                                         Kind{"OverATerminal", terminalIn}),
                         [](const auto& row) { return row.param.name; });

using TwoProcesses = DeviceRootTest;

TEST_F(TwoProcesses, ShareTheirPropertiesAndPartInPeace) {
    std::filesystem::create_directory(root() / "store");
    const auto device = makeSocketDevice(root());
    ChildProcess child({MEMBER_PROGRAM, root().string()}, root() / "output");
    Member here("HERE", std::make_shared<HandleStream>(device->takeOtherSide()));
    here.join();

    const auto number = externalOf(here, "CHILD");
    EXPECT_EQ(number->getValue(), 1U);
    number->setValue(41); // which the other program answers with one more
    EXPECT_TRUE(eventually([&] { return number->getValue() == 42; }));
    number->setValue(0); // its sign to go
    EXPECT_EQ(child.exitStatus(kDeadline), 0);
    here.awaitEndOfReading();
}

TEST_F(TwoProcesses, TheDeathOfOneLeavesTheOtherAlive) {
    std::filesystem::create_directory(root() / "store");
    const auto device = makeSocketDevice(root());
    ChildProcess child({MEMBER_PROGRAM, root().string()}, root() / "output");
    Member here("HERE", std::make_shared<HandleStream>(device->takeOtherSide()));
    const auto mine = here.add<UInt32Property>("M", 1U);
    here.join();
    const auto number = externalOf(here, "CHILD");
    child.kill();
    here.awaitEndOfReading();
    mine->setValue(2);
    EXPECT_TRUE(eventually([&] { return !here.agent->setExternalValue("CHILD", "G", "N", "5"); }));
    EXPECT_EQ(number->getValue(), 1U);
}

} // namespace
