#include "platform/ThreadFactory.h"
#include "prefs/ApplicationIdentity.h"
#include "prefs/DisplayPreferences.h"
#include "prefs/KQDisplayPreferences.h"
#include "prefs/KQLocalPreferences.h"
#include "prefs/SystemFeatures.h"
#include "property/PublishingPropertyManager.h"
#include "tests/support/DeviceRootTest.h"

#include <QCoreApplication>
#include <QHostAddress>
#include <QMetaProperty>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QSignalSpy>

#include <fstream>
#include <thread>

namespace {

class Preferences : public DeviceRootTest {
protected:
    Preferences() {
        std::filesystem::create_directory(root() / "store");
        start();
    }

    /// As a program that starts, or starts again.
    void start() {
        face.reset();
        display.reset();
        manager.reset();
        manager = std::make_shared<PublishingPropertyManager>(threads, kThreadPriority, kThreadPriority,
                                                              L"/store/AppPreferences.ini", L"/boot/none");
        display = createDisplayPreferences(manager, nullptr);
        face = createKQDisplayPreferences(display);
    }

    const std::shared_ptr<ThreadFactory> threads = std::make_shared<ThreadFactory>(kThreadPriority);
    std::shared_ptr<PublishingPropertyManager> manager;
    std::shared_ptr<DisplayPreferences> display;
    std::shared_ptr<KQDisplayPreferences> face;
};

struct Row {
    const char* name;
    QVariant byDefault;
    QVariant other;
    int signalsOfAChange;
    bool isStored;
};

const Row kRows[] = {
    {"showFullPartName", true, false, 1, true},
    {"screenResolutionWidth", 1024U, 800U, 2, true},
    {"screenResolutionHeight", 600U, 480U, 2, true},
    {"printerStatusDisplay", "ready", "alert", 2, false},
    {"storedJobsUIView", 0U, 3U, 1, true},
    {"measurementUnit", 0U, 1U, 1, true},
    {"dotsPerInch", 300U, 203U, 1, false},
    {"hourFormat24", false, true, 2, true},
    {"secretDevelopmentSettings", false, true, 2, false},
    {"invertScreen", false, true, 1, true},
};

TEST_F(Preferences, EachReadsSignalsAndIsStoredAsItShould) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.name);
        const QMetaProperty property =
            face->metaObject()->property(face->metaObject()->indexOfProperty(row.name));
        EXPECT_EQ(property.read(face.get()), row.byDefault);
        QSignalSpy spy(face.get(), property.notifySignal());
        EXPECT_TRUE(property.write(face.get(), row.other));
        EXPECT_EQ(spy.count(), row.signalsOfAChange);
        EXPECT_EQ(spy.last().first(), row.other);
        EXPECT_EQ(property.read(face.get()), row.other);
        EXPECT_TRUE(property.write(face.get(), row.other));
        EXPECT_EQ(spy.count(), row.signalsOfAChange + 1) << "the same value, by the setter alone";
    }
    start();
    for (const Row& row : kRows)
        EXPECT_EQ(face->property(row.name), row.isStored ? row.other : row.byDefault) << row.name;
    EXPECT_FALSE(face->readyToUpdateDisplay());
}

TEST_F(Preferences, ChangesFromElsewhereAreSignalledWhereTheyShouldBe) {
    QSignalSpy wired(face.get(), &KQDisplayPreferences::printerStatusDisplayChanged);
    QSignalSpy plain(face.get(), &KQDisplayPreferences::measurementUnitChanged);
    display->printerStatusDisplay().setFromString("alert");
    display->measurementUnit().setFromString("2");
    EXPECT_EQ(wired.count(), 1);
    EXPECT_EQ(plain.count(), 0);
    EXPECT_EQ(face->measurementUnit(), 2U) << "seen at the next read";
    face.reset();
    display->printerStatusDisplay().setFromString("ready");
}

TEST_F(Preferences, AChangeOnAnotherThreadReachesABinding) {
    QQmlEngine engine;
    engine.rootContext()->setContextProperty("preferences", face.get());
    QQmlComponent component(&engine);
    component.setData(
        "import QtQml 2.2; QtObject { property string shown: preferences.printerStatusDisplay }", {});
    const std::unique_ptr<QObject> object(component.create());
    ASSERT_TRUE(object) << component.errorString().toStdString();
    EXPECT_EQ(object->property("shown"), "ready");
    std::thread([&] { display->printerStatusDisplay().setFromString("alert"); }).join();
    EXPECT_TRUE(eventually([&] {
        QCoreApplication::processEvents();
        return object->property("shown") == "alert";
    }));
}

TEST_F(Preferences, WithoutAModelEverythingIsNothing) {
    const auto nothing = createKQDisplayPreferences(nullptr);
    for (const Row& row : kRows) {
        QSignalSpy spy(nothing.get(), &KQDisplayPreferences::invertScreenChanged);
        nothing->setProperty(row.name, row.other);
        const QVariant expected =
            row.other.type() == QVariant::String ? QVariant(QStringLiteral(" ")) : QVariant(0U);
        EXPECT_EQ(nothing->property(row.name), expected) << row.name;
        EXPECT_EQ(spy.count(), 0);
    }
}

TEST_F(Preferences, LocalOnesAreStoredAndSignalEverySet) {
    const std::pair<const char*, QVariant> rows[] = {{"printerIPAddress", "10.0.0.7"},
                                                     {"mfgReportStoragePath", "D:\\x"},
                                                     {"mfgYBFilePath", ""},
                                                     {"mfgMode", false},
                                                     {"emulateSupplies", true}};
    {
        KQLocalPreferences local(manager);
        EXPECT_EQ(local.mfgReportStoragePath(), "C:\\Store");
        EXPECT_TRUE(local.mfgMode());
        for (const auto& [name, value] : rows) {
            const QMetaProperty property =
                local.metaObject()->property(local.metaObject()->indexOfProperty(name));
            QSignalSpy spy(&local, property.notifySignal());
            EXPECT_TRUE(property.write(&local, value));
            EXPECT_TRUE(property.write(&local, value));
            EXPECT_EQ(spy.count(), 2) << name;
        }
    }
    start();
    KQLocalPreferences again(manager);
    for (const auto& [name, value] : rows)
        EXPECT_EQ(again.property(name), value) << name;
}

TEST(LocalAddress, IsTheFirstOfIPv4ButLoopback) {
    const auto first = [](const QStringList& texts) {
        QList<QHostAddress> addresses;
        for (const QString& text : texts)
            addresses.append(QHostAddress(text));
        return firstAddress(addresses);
    };
    EXPECT_EQ(first({"127.0.0.1", "fe80::1", "192.168.0.5", "10.1.1.1"}), "192.168.0.5");
    EXPECT_EQ(first({"127.0.0.1"}), "");
    EXPECT_EQ(first({}), "");
}

using Features = DeviceRootTest;

TEST_F(Features, AreReadFromTheBootFolder) {
    const std::pair<const char*, bool> rows[] = {
        {R"({"features": ["x", "Battery", 1]})", true},
        {R"({"features": ["battery"]})", false},
        {R"({"features": "Battery"})", false},
        {"[]", false},
        {"{", false},
        {"", false},
    };
    std::filesystem::create_directory(root() / "boot");
    EXPECT_FALSE(hasFeature(readSystemFeatures(), "Battery")) << "no file";
    for (const auto& [text, hasBattery] : rows) {
        std::ofstream(root() / "boot" / "systemfeatures.json") << text;
        EXPECT_EQ(hasFeature(readSystemFeatures(), "Battery"), hasBattery) << text;
    }
    EXPECT_EQ(ApplicationIdentity::instance().systemFeaturesPath(), L"/boot/systemfeatures.json");
    std::filesystem::remove_all(root() / "boot");
    EXPECT_TRUE(ApplicationIdentity::instance().systemFeaturesPath().ends_with(
        LR"(OXPLApps/SystemFeatures/systemfeatures.json)"));
}

} // namespace
