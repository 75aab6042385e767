#include "picl/PICLIF.h"

#include "picl/PICLServerAgent.h"
#include "platform/HandleStream.h"
#include "platform/ThreadFactory.h"
#include "prefs/ApplicationIdentity.h"
#include "prefs/DisplayPreferences.h"
#include "property/MakeProperty.h"
#include "property/PublishingPropertyManager.h"
#include "tests/picl/ScriptedPeer.h"
#include "tests/support/LoopbackPort.h"
#include "tests/support/NoThreads.h"
#include "tests/support/PrinterDevice.h"
#include "json/JSONImporterExporter.h"

#include <atomic>
#include <fstream>
#include <thread>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// Reads whole frames and returns their texts; an empty one stands for the end.
std::string nextText(Stream& stream) {
    std::string header(frame::kHeaderSize, '\0');
    for (std::size_t got = 0; got < header.size();) {
        const std::int32_t count = stream.read(&header[got], static_cast<std::int32_t>(header.size() - got));
        if (count <= 0)
            return {};
        got += static_cast<std::size_t>(count);
    }
    std::size_t size = 0;
    for (std::size_t i = frame::kLengthSize; i-- > 0;)
        size = size << 8 | static_cast<unsigned char>(header[frame::kMagic.size() + i]);
    std::string text(size, '\0');
    for (std::size_t got = 0; got < size;) {
        const std::int32_t count = stream.read(&text[got], static_cast<std::int32_t>(size - got));
        if (count <= 0)
            return {};
        got += static_cast<std::size_t>(count);
    }
    return text;
}

std::string lastText(Stream& stream) {
    std::string last;
    for (std::string text = nextText(stream); !text.empty(); text = nextText(stream))
        last = text;
    return last;
}

constexpr const char* kGoodbye = R"({"Disconnect": "True"})";

class Client : public DeviceRootTest {
protected:
    Client() {
        ApplicationIdentity::instance().setComponentGuid("ME");
        ApplicationIdentity::instance().setComponentName("My Program");
        std::filesystem::create_directory(root() / "store");
        manager = std::make_shared<PublishingPropertyManager>(threads, kThreadPriority, kThreadPriority,
                                                              L"/store/AppPreferences.ini", L"/boot/none");
        client = std::make_unique<PICLIF>(threads, manager);
        device = makeSocketDevice(root());
    }

    std::shared_ptr<Stream> connect() {
        EXPECT_TRUE(client->connectToDevice(L"PRN0:"));
        return std::make_shared<HandleStream>(device->takeOtherSide());
    }

    [[nodiscard]] std::shared_ptr<Property> zone(std::size_t index) const {
        return manager->findProperty(vocabulary::kDebugZones[index].property.guid,
                                     vocabulary::groups::kDebugZone.guid);
    }

    const std::shared_ptr<ThreadFactory> threads = std::make_shared<ThreadFactory>(kThreadPriority);
    std::shared_ptr<PublishingPropertyManager> manager;
    std::unique_ptr<PICLIF> client;
    std::unique_ptr<PrinterDevice> device;
};

TEST_F(Client, TheFirstFrameIsWhatThereIsAndTheLastTheGoodbye) {
    const auto peer = connect();
    const std::string first = nextText(*peer);
    EXPECT_TRUE(
        first.starts_with(R"({"PropertyGetResponses": [{"Component": "ME","ComponentString": "My Program")"))
        << first;
    EXPECT_EQ(first.find("Debug Zone"), std::string::npos) << "they come afterwards";
    std::thread setup([&] { client->completeSetup(); });
    const std::string asked = nextText(*peer);
    EXPECT_TRUE(asked.starts_with(R"({"PropertySubscribeRequests": [{"Component": "B80EB2EA)")) << asked;
    const std::string answer =
        frameOf(R"({"PropertyGetResponses": [{"Component": "B80EB2EA-4F49-423A-875C-8ACB1ACB9734",)"
                R"("GUID": "99A61D40-20CE-41EA-A579-EB92C6ED94C6:890AF444-4F6B-44E9-B3F6-EA0239DE6317",)"
                R"("Status": "Successful","Value": "203"}]})");
    EXPECT_GT(peer->write(answer.data(), static_cast<std::int32_t>(answer.size())), 0);
    setup.join();
    EXPECT_EQ(client->displayPreferences()->dotsPerInch()->getValue(), 203U);
    std::string published = nextText(*peer);
    while (!published.empty() && published.find("\"Firmware Build Number\"") == std::string::npos)
        published = nextText(*peer);
    EXPECT_LT(published.find("\"Firmware Build Number\""), published.find("\"Firmware Version\""))
        << "the newest first";

    const std::shared_ptr<PICLServerAgent> held = client->agent();
    client.reset();
    EXPECT_EQ(lastText(*peer), kGoodbye);
    EXPECT_FALSE(held->setExternalValue("C", "G", "P", "v"));
}

TEST_F(Client, WithoutAServerTheDefaultsRule) {
    device.reset();
    std::filesystem::remove(root() / "dev" / "PRN0");
    std::ofstream(root() / "dev" / "PRN0") << "no device";
    EXPECT_FALSE(client->connectToDevice(L"PRN0:"));
    EXPECT_FALSE(client->connectToSocket(IPv4Address("1.2.3"), 9102));
    client->disconnect();
    client->disconnect();
    EXPECT_FALSE(client->agent());
    client->completeSetup();
    EXPECT_EQ(client->displayPreferences()->dotsPerInch()->getValue(), 300U);
}

TEST_F(Client, AThreadThatCannotBeCreatedEndsTheConnectionOnly) {
    {
        const NoThreads none;
        ASSERT_FALSE(client->connectToDevice(L"PRN0:"));
    }
    HandleStream peer(device->takeOtherSide());
    EXPECT_NE(lastText(peer), "") << "the first frame, and then the end";
    EXPECT_NE(nextText(*connect()), "") << "a later connection works";
}

TEST_F(Client, DebugZonesFollowTheirPropertiesAndWhatIsStored) {
    auto peer = connect();
    for (std::size_t i = 0; i < vocabulary::kDebugZones.size(); ++i) {
        ASSERT_TRUE(zone(i)) << i;
        EXPECT_EQ(vocabulary::debugZoneFlag(i), vocabulary::kDebugZones[i].byDefault) << i;
    }
    zone(15)->setFromString("False");
    zone(0)->setFromString("False");
    EXPECT_FALSE(vocabulary::debugZoneFlag(15));
    client.reset();
    manager.reset(); // writes what is queued
    vocabulary::debugZoneFlag(15) = true;
    manager = std::make_shared<PublishingPropertyManager>(threads, kThreadPriority, kThreadPriority,
                                                          L"/store/AppPreferences.ini", L"/boot/none");
    client = std::make_unique<PICLIF>(threads, manager);
    peer = connect();
    EXPECT_FALSE(vocabulary::debugZoneFlag(15)) << "as stored";
    zone(15)->setFromString("True");
    zone(0)->setFromString("True");
}

TEST_F(Client, SpeaksOverTcpAlike) {
    LoopbackPort port;
    port.listen();
    ASSERT_TRUE(client->connectToSocket(IPv4Address("127.0.0.1"), port.number()));
    HandleStream peer(port.accept());
    EXPECT_FALSE(nextText(peer).empty());
    client->disconnect();
    EXPECT_EQ(lastText(peer), kGoodbye);
}

TEST_F(Client, ASecondConnectionEndsTheFirstAndIsWhole) {
    const auto first = connect();
    EXPECT_FALSE(nextText(*first).empty());
    const auto second = connect();
    EXPECT_EQ(lastText(*first), kGoodbye);
    EXPECT_NE(nextText(*second).find("LeakTracking"), std::string::npos);
    const std::string question = frameOf(R"({"PropertyGetRequests": [{"GUID": "none:none"}]})");
    EXPECT_GT(second->write(question.data(), static_cast<std::int32_t>(question.size())), 0);
    std::string text = nextText(*second);
    while (!text.empty() && text.find("Property Not Found") == std::string::npos)
        text = nextText(*second);
    EXPECT_FALSE(text.empty());
}

TEST_F(Client, APeerThatHasStoppedReadingDoesNotHoldUpTheEnd) {
    const auto peer = connect();
    const auto text = makeProperty<StringProperty>(
        vocabulary::groups::kGeneral, vocabulary::properties::kLanguage, std::string(2'000'000, 'x'));
    manager->addProperty(text); // more than the socket takes
    EXPECT_TRUE(eventually([&] { return client->agent()->countOfChangedProperties() == 0; }));
    const auto begin = Clock::now();
    client.reset();
    manager.reset();
    EXPECT_LT(Clock::now() - begin, 2s);
}

// Made and dropped under load: a peer that sets and asks, half a message at the end, others who hold the
// agent.
TEST_F(Client, ConnectionsComeAndGo) {
    std::atomic<bool> goesOn = true;
    std::thread setter([&] {
        const auto number = makeProperty<UInt32Property>(vocabulary::groups::kGeneral,
                                                         vocabulary::properties::kMeasurementUnit, 0U);
        manager->addProperty(number);
        for (std::uint32_t i = 0; goesOn; ++i) {
            number->setValue(i);
            std::this_thread::yield();
        }
    });
    const std::string load =
        frameOf(R"({"PropertySetRequests": [{"GUID": "G:P","Value": "1"}],"GetAllProperties": 1})");
    std::shared_ptr<PICLServerAgent> held;
    for (int i = 0; i < 1000; ++i) {
        const auto peer = connect();
        EXPECT_GT(peer->write(load.data(),
                              static_cast<std::int32_t>(load.size() - static_cast<std::size_t>(i % 3) * 20)),
                  0);
        if (i % 2 == 0)
            held = client->agent();
        if (i % 5 == 0)
            peer->close();
        client->disconnect();
    }
    goesOn = false;
    setter.join();
    EXPECT_FALSE(held->setExternalValue("C", "G", "P", "v"));
}

} // namespace
