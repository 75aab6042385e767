#include "tools/firmware/FirmwareDriver.h"

#include "platform/OXPLStreamDriverInterface.h"
#include "property/BoolProperty.h"
#include "property/PropertyVocabulary.h"
#include "property/UInt32Property.h"
#include "tests/picl/Member.h"
#include "tests/support/DeviceRootTest.h"

namespace {

template <typename T>
std::shared_ptr<T> mirrorOf(Member& member, const VocabularyEntry& group, const VocabularyEntry& property) {
    return member.agent
        ->getExternalProperty<T>(std::string(vocabulary::components::kFirmwareDriver.guid),
                                 std::string(group.guid), std::string(property.guid), kDeadline.count())
        .lock();
}

std::shared_ptr<BoolProperty> acConnectedOf(Member& member) {
    return mirrorOf<BoolProperty>(member, vocabulary::groups::kBattery,
                                  vocabulary::properties::kBatteryACConnected);
}

class FirmwareDriverTest : public DeviceRootTest {
protected:
    FirmwareDriverTest() { std::filesystem::create_directory(root() / "store"); }

    std::unique_ptr<FirmwareDriver> create() {
        std::string why;
        auto driver = FirmwareDriver::create(false, why);
        EXPECT_EQ(driver == nullptr, why.find("dev/PRN0: it is taken by another server") != std::string::npos)
            << why;
        return driver;
    }

    static std::unique_ptr<Member> connect() {
        auto member = std::make_unique<Member>(
            "application", std::make_shared<OXPLStreamDriverInterface>(L"PRN0:", kFileOrDeviceStream));
        member->join();
        return member;
    }
};

TEST_F(FirmwareDriverTest, ItsValuesAndTheirChangesReachTheMirrorsOfWhoConnects) {
    const auto driver = create();
    const auto member = connect();
    const auto acConnected = acConnectedOf(*member);
    const auto dots =
        mirrorOf<UInt32Property>(*member, vocabulary::groups::kGeneral, vocabulary::properties::kDotsPerInch);
    ASSERT_TRUE(acConnected && dots);
    EXPECT_FALSE(acConnected->getValue());
    EXPECT_EQ(create(), nullptr) << "a device has one firmware, whose connection a second one leaves alone";
    driver->setACConnected(true);
    driver->setDotsPerInch(600);
    EXPECT_TRUE(eventually([&] { return acConnected->getValue() && dots->getValue() == 600; }));
    EXPECT_TRUE(std::filesystem::is_empty(root() / "store"));
}

TEST_F(FirmwareDriverTest, AFirmwareThatComesBackIsFoundByWhoConnectsThen) {
    auto driver = create();
    const auto first = connect();
    ASSERT_TRUE(acConnectedOf(*first));
    driver.reset();
    first->awaitEndOfReading();
    driver = create();
    const auto second = connect();
    const auto acConnected = acConnectedOf(*second);
    ASSERT_TRUE(acConnected);
    driver->setACConnected(true);
    EXPECT_TRUE(eventually([&] { return acConnected->getValue(); }));
}

} // namespace
