#include "app/UpgradeInterface.h"
#include "app/UpgradeMessage.h"
#include "picl/PICLIF.h"
#include "platform/HandleStream.h"
#include "platform/ThreadFactory.h"
#include "property/PropertyVocabulary.h"
#include "property/PublishingPropertyManager.h"
#include "property/UInt32Property.h"
#include "tests/picl/ScriptedPeer.h"
#include "tests/support/PrinterDevice.h"
#include "tools/upgrader/UpgraderLink.h"

#include <atomic>
#include <fstream>
#include <thread>

namespace {

using namespace std::chrono_literals;
using Soak = DeviceRootTest;

constexpr int kMessages = 10'000;

std::string frameOfSet(const VocabularyEntry& group, const VocabularyEntry& property, int value) {
    return frameOf(R"({"PropertySetRequests": [{"GUID": ")" + std::string(group.guid) + ":" +
                   std::string(property.guid) + R"(","Value": ")" + std::to_string(value) + R"("}]})");
}

// A battery printer without its screens: ten thousand codes of the upgrader and ten thousand sets of the
// property server at once, with AC power that comes and goes.
TEST_F(Soak, TheLastOfEverythingHolds) {
    for (const char* const folder : {"boot", "store"})
        std::filesystem::create_directory(root() / folder);
    std::ofstream(root() / "boot/systemfeatures.json") << R"({"features": ["Battery"]})";
    const auto device = makeSocketDevice(root());
    std::string why;
    const auto upgrader = UpgraderLink::create(why);
    ASSERT_TRUE(upgrader) << why;
    const auto threads = std::make_shared<ThreadFactory>(kThreadPriority);
    const auto manager = std::make_shared<PublishingPropertyManager>(
        threads, kThreadPriority, kThreadPriority, L"/store/AppPreferences.ini", L"/boot/none");
    auto client = std::make_unique<PICLIF>(threads, manager);
    ASSERT_TRUE(client->connectToDevice(L"PRN0:"));
    HandleStream server(device->takeOtherSide());
    const std::string acPower =
        R"({"PropertyGetResponses": [{"Component": "B80EB2EA-4F49-423A-875C-8ACB1ACB9734",)"
        R"("GUID": "FDA4C5D4-8C46-45E5-80E4-48504451C7B5:)"
        R"(ECDD0A3C-DFCB-4F47-A2EA-235C5803657C","Status": "Successful","Value": ")";
    const auto write = [&](const std::string& frame) {
        EXPECT_GT(server.write(frame.data(), static_cast<std::int32_t>(frame.size())), 0);
    };
    std::thread reader([&] { // takes what is published, as a server must
        std::string bytes(65536, '\0');
        while (server.read(bytes.data(), static_cast<std::int32_t>(bytes.size())) > 0) {
        }
    });
    std::atomic<bool> goesOn = true;
    std::thread answering([&] { // until the link has its mirror
        while (goesOn) {
            write(frameOf(acPower + "False\"}]}"));
            std::this_thread::sleep_for(1ms);
        }
    });
    auto link = createUpgradeInterface(client->agent(), manager);
    goesOn = false;
    answering.join();
    std::atomic<int> displays = 0;
    link->setDisplayHandler([&](UpgradeDisplay) { ++displays; });
    link->start();

    std::thread sets([&] {
        for (int i = 1; i <= kMessages; ++i) {
            write(frameOfSet(vocabulary::groups::kGeneral,
                             vocabulary::properties::kPropertyPublishingPeriodInMs, 1000 + i));
            if (i % 10 == 0)
                write(frameOf(acPower + (i % 20 == 0 ? "True" : "False") + "\"}]}"));
        }
    });
    for (int i = 0; i < kMessages; ++i)
        ASSERT_TRUE(upgrader->send(i % 2 == 0 ? MsgFileFound : MsgFailed, kDeadline)) << i;
    ASSERT_TRUE(upgrader->awaitTaken(kDeadline));
    sets.join();
    const auto period = std::dynamic_pointer_cast<UInt32Property>(manager->findProperty(
        vocabulary::properties::kPropertyPublishingPeriodInMs.guid, vocabulary::groups::kGeneral.guid));
    EXPECT_TRUE(eventually([&] { return period->getValue() == 1000 + kMessages; }));
    EXPECT_TRUE(link->isACConnected());
    EXPECT_GE(displays, kMessages / 2);
    link->stop();
    link.reset();
    client.reset();
    reader.join();
}

} // namespace
