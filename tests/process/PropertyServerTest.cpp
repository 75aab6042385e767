#include "tests/process/ProcessTest.h"
#include "tests/process/ScriptedPropertyServer.h"

#include "app/UpgradeMessage.h"
#include "property/PropertyFile.h"
#include "tests/picl/ScriptedPeer.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <numeric>
#include <thread>

namespace {

namespace components = vocabulary::components;
namespace groups = vocabulary::groups;
namespace properties = vocabulary::properties;

KnownProperty general(const VocabularyEntry& property, const std::string& value) {
    return {groups::kGeneral, property, value};
}

KnownProperty displayed(const VocabularyEntry& property, const std::string& value) {
    return {groups::kDisplayPreferences, property, value};
}

KnownProperty local(const VocabularyEntry& property, const std::string& value) {
    return {groups::kLocallyStoredPreferences, property, value};
}

KnownProperty dotsPerInch(const std::string& value) { return general(properties::kDotsPerInch, value); }

KnownProperty power(const std::string& value) {
    return {groups::kBattery, properties::kBatteryACConnected, value};
}

/// What there is before a publisher, which no publication tells.
KnownProperties ofTheManager() {
    return {{groups::kError, properties::kPropertyLoadingError, "False"},
            general(properties::kNameOfPropertyOverrideFile, "/boot/AppPreferencesOverride.ini"),
            general(properties::kNameOfPropertyFile, "/store/AppPreferences.ini"),
            general(properties::kStoreProperties, "False")};
}

/// What there is at the connection, in the order of its creation, as it travels.
KnownProperties beforeTheConnection() {
    return {local(properties::kConnectedPrinterIPAddress, "10.1.2.3"),
            local(properties::kManufacturingReportLocation, R"(C:\\Store)"),
            local(properties::kYBFileLocation, R"(\\\\server\\manufacturing\\yb)"),
            local(properties::kManufacturingDisplayMode, "True"),
            local(properties::kEmulateSupplies, "False"),
            general(properties::kPropertyPublishingPeriodInMs, "500")};
}

/// What comes while the first answer of the server is waited for.
KnownProperties behindTheConnection() {
    KnownProperties all;
    for (const vocabulary::DebugZone& zone : vocabulary::kDebugZones)
        all.push_back({groups::kDebugZone, zone.property, zone.byDefault ? "True" : "False"});
    const KnownProperties display{displayed(properties::kPrinterStatusDisplay, "ready"),
                                  displayed(properties::kFullPartName, "True"),
                                  displayed(properties::kStoredJobsUIView, "0"),
                                  displayed(properties::kMeasurementUnit, "0"),
                                  displayed(properties::kHourFormat24, "True"),
                                  displayed(properties::kSecretDevelopmentSettings, "False"),
                                  displayed(properties::kLanguage, "english"),
                                  displayed(properties::kInvertScreen, "False")};
    all.insert(all.end(), display.begin(), display.end());
    return all;
}

KnownProperties operator+(KnownProperties all, const KnownProperties& more) {
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

Reports inTheOrderOfKeys(KnownProperties all) {
    std::ranges::sort(all, {}, &KnownProperty::key);
    return reportsOn(all);
}

std::string subscription(const KnownProperty& property) {
    return frameOf(R"({"PropertySubscribeRequests": [{"Component": ")" +
                   std::string(components::kFirmwareDriver.guid) + R"(","GUID": ")" + property.key() +
                   R"("}]})");
}

/// The report on what stands in for @p property of the firmware.
std::string substituteFor(const KnownProperty& property) {
    std::string report = reportsOn({property}).front();
    return report.insert(report.find(property.property.guid),
                         std::string(components::kFirmwareDriver.guid) + '-');
}

class PropertyServerTest : public ProcessTest {
protected:
    PropertyServerTest() { tellScreens(); }

    /// Starts the application; the server, when told so, has answered what it asks at its start.
    std::unique_ptr<ChildProcess> connect(bool answers = true) {
        startUpgrader();
        auto application = startApplication();
        server.accept();
        EXPECT_NE(server.hears(), "") << "the first frame";
        if (answers) {
            EXPECT_EQ(server.hears(), subscription(dotsPerInch("")));
            server.saysOfFirmware(dotsPerInch("203"));
            EXPECT_EQ(server.hears(), subscription(power("")));
            server.saysOfFirmware(power("True"));
        }
        return application;
    }

    void connectsPower(const char* value) {
        server.saysOfFirmware(power(value));
        server.sync();
    }

    void send(std::uint8_t code) {
        ASSERT_TRUE(upgrader->send(code, kDeadline));
        ASSERT_TRUE(upgrader->awaitTaken(kDeadline));
    }

    void closes(ChildProcess& application) {
        upgrader->requestClose();
        EXPECT_TRUE(acknowledges());
        EXPECT_EQ(application.exitStatus(kDeadline), 0);
    }

    ScriptedPropertyServer server{printer()};
};

TEST_F(PropertyServerTest, HearsALifeFromItsFirstFrameToItsLast) {
    const KnownProperty address = local(properties::kConnectedPrinterIPAddress, "10.1.2.3");
    const KnownProperty hours = displayed(properties::kHourFormat24, "True");
    const std::string foreign = "A:B|a group:a name=kept\n";
    place("store/AppPreferences.ini", withFileCheck(hours.line() + foreign + address.line()));
    startUpgrader();
    const auto application = startApplication();
    server.accept();

    EXPECT_EQ(server.hears(), frameOf(messageOf(inTheOrderOfKeys(ofTheManager() + beforeTheConnection()))));
    EXPECT_EQ(server.hears(), subscription(dotsPerInch("")));
    const Reports first = reportsOn(beforeTheConnection() + behindTheConnection());
    EXPECT_EQ(server.hearsPublished(first), first);
    server.saysOfFirmware(dotsPerInch("203"));
    EXPECT_EQ(server.hears(), subscription(power("")));
    const KnownProperties firmware{{groups::kProductInfo, properties::kFirmwareVersion, "1.1.153310"},
                                   {groups::kProductInfo, properties::kFirmwareBuildNumber, "153310"}};
    EXPECT_EQ(server.hearsPublished(reportsOn(firmware)), reportsOn(firmware));
    server.saysOfFirmware(power("True"));
    const KnownProperties screen{displayed(properties::kScreenResolutionWidth, "1024"),
                                 displayed(properties::kScreenResolutionHeight, "600")};
    EXPECT_EQ(server.hearsPublished(reportsOn(screen)), reportsOn(screen));

    server.asksFor(hours);
    EXPECT_EQ(server.hears(), frameOf(messageOf(reportsOn({hours}))));
    server.says(R"({"GetAllProperties": true})");
    EXPECT_EQ(server.hears(), frameOf(messageOf(inTheOrderOfKeys(ofTheManager() + beforeTheConnection() +
                                                                 behindTheConnection() + firmware + screen),
                                                R"({"GetAllPropertiesResponse": true,)")));

    const KnownProperties set{displayed(properties::kMeasurementUnit, "2"),
                              displayed(properties::kHourFormat24, "False")};
    server.sets(set);
    EXPECT_EQ(server.hearsPublished(reportsOn(set)), reportsOn(set));
    const std::string file = withFileCheck(set[1].line() + foreign + address.line() + set[0].line());
    EXPECT_TRUE(eventually([&] { return contents("store/AppPreferences.ini") == file; }));

    closes(*application);
    EXPECT_EQ(server.hears(), frameOf(R"({"Disconnect": "True"})"));
    EXPECT_EQ(server.hears(), "") << "nothing behind it";
    EXPECT_EQ(output("UpgradeUI"), "") << "nothing to complain about";
}

TEST_F(PropertyServerTest, APrinterOnItsBatteryWaitsForPowerAndOnlyThere) {
    place("boot/systemfeatures.json", R"({"features": ["Battery"]})");
    const auto application = connect();
    connectsPower("False");
    connectsPower("True"); // without a display
    connectsPower("False");
    send(MsgFileFound);
    ASSERT_TRUE(shows("connectACPower"));
    connectsPower("False");
    connectsPower("True");
    ASSERT_TRUE(shows("upgradeFileFound"));
    for (const auto& [code, display] :
         {std::pair(MsgFileCorrupted, "upgradeFileCorrupted"),
          std::pair(MsgFileIncompatible, "upgradeFileIncompatible"), std::pair(MsgFailed, "upgradeFailed"),
          std::pair(MsgFileNotFound, "upgradeFileNotFound")}) {
        // On these a message that the file was found would lead on.
        send(code);
        ASSERT_TRUE(shows(display));
        connectsPower("False");
        connectsPower("True");
    }
    ASSERT_TRUE(upgrader->send(MsgExitUi, kDeadline)); // who has gone takes nothing more
    EXPECT_TRUE(repliesWith(CommandUiExiting));
    EXPECT_EQ(application->exitStatus(kDeadline), 0);
    EXPECT_TRUE(shows()) << "nothing else";
}

TEST_F(PropertyServerTest, OneThatNeverAnswersCostsItsTimeOutsAndNoMore) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::seconds kTimeOut(3);
    place("boot/systemfeatures.json", R"({"features": ["Battery"]})");
    const auto application = connect(false);
    ASSERT_TRUE(upgrader->send(MsgFileFound, kDeadline));
    EXPECT_EQ(server.hears(), subscription(dotsPerInch("")));
    const auto start = Clock::now();
    EXPECT_TRUE(shows("upgradeFileFound")) << "nobody tells that there is no power";
    EXPECT_GT(Clock::now() - start, 3 * kTimeOut / 2);
    EXPECT_LT(Clock::now() - start, 3 * kTimeOut);

    // From here on substitutes stand for both, and the server is not heard on them.
    server.saysOfFirmware(power("False"));
    const std::string all = server.hearsAll();
    for (const KnownProperty& known : {dotsPerInch("300"), power("True")})
        EXPECT_NE(all.find(substituteFor(known)), std::string::npos) << all;
    closes(*application);
}

TEST_F(PropertyServerTest, OneThatHangsUpOrTalksNonsenseIsNotMissed) {
    for (const bool answers : {false, true}) {
        for (const char* last : {"", "no message"}) {
            SCOPED_TRACE(testing::Message() << answers << last);
            const auto application = connect(answers);
            if (*last != '\0')
                server.says(last);
            server.hangUp();
            send(MsgFileFound);
            EXPECT_TRUE(eventually([&] { return output("UpgradeUI").ends_with("qml: upgradeFileFound\n"); }));
            closes(*application);
        }
    }
}

TEST_F(PropertyServerTest, FramesOfManyValuesTakeAtMost64MB) {
    const auto application = connect();
    send(MsgFileFound);
    EXPECT_TRUE(eventually([&] { return output("UpgradeUI").ends_with("qml: upgradeFileFound\n"); }));
    const std::size_t before = application->peakMemory();
    for (int i = 0; i < 3; ++i) {
        server.says(largestObject());
        server.sync();
    }
    EXPECT_LE(application->peakMemory() - before, 64'000'000U);
    closes(*application);
}

TEST_F(PropertyServerTest, TenThousandMessagesFromBothSides) {
    constexpr int kCount = 10000;
    constexpr int kSetsAtOnce = 100;
    std::filesystem::create_directory(printer() / "store");
    place("boot/systemfeatures.json", R"({"features": ["Battery"]})");
    const auto application = connect();
    const auto last = [](int number) {
        return KnownProperties{displayed(properties::kStoredJobsUIView, std::to_string(number)),
                               displayed(properties::kPrinterStatusDisplay, "s" + std::to_string(number))};
    };
    std::thread sets([&] {
        KnownProperties batch;
        for (int number = 2; number <= kCount; number += 2) {
            batch = batch + last(number);
            if (batch.size() == kSetsAtOnce) {
                server.saysOfFirmware(power(number % 200 == 0 ? "True" : "False"));
                server.sets(std::exchange(batch, {}));
                server.sync();
            }
        }
    });
    std::array<std::uint8_t, 4 + ProgressFinalOperation - MsgFileFound + 1> codes{
        MsgPackageInfo, MsgPrinterInfo, MsgFailed, MsgFileCorrupted};
    std::iota(codes.begin() + 4, codes.end(), std::uint8_t{MsgFileFound}); // to the last stage
    for (std::size_t sent = 0; sent < kCount; sent += codes.size())
        EXPECT_TRUE(upgrader->send(codes, kDeadline));
    send(MsgFileNotFound);
    sets.join();

    EXPECT_TRUE(eventually([&] { return output("UpgradeUI").ends_with("qml: upgradeFileNotFound\n"); }));
    const std::string all = server.hearsAll();
    for (const std::string& report : reportsOn(last(kCount)))
        EXPECT_NE(all.find(report), std::string::npos) << report;
    closes(*application);
    const std::string file = contents("store/AppPreferences.ini");
    EXPECT_TRUE(hasGoodFileCheck(file));
    EXPECT_NE(file.find(last(kCount).front().line()), std::string::npos) << file;
}

} // namespace
