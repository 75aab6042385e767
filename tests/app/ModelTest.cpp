#include "app/KQUpgradeInterface.h"

#include "tests/support/FakeLink.h"

#include <QMetaMethod>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <memory>

namespace {

using Model = KQUpgradeInterface;

class ModelTest : public ::testing::Test {
protected:
    std::shared_ptr<FakeLink> link = std::make_shared<FakeLink>();
    std::shared_ptr<Model> model = createUpgradeModel(link);
};

TEST_F(ModelTest, StartsIdleAndStartsTheLinkLast) {
    EXPECT_TRUE(link->started);
    EXPECT_FALSE(link->setAfterStart);
    EXPECT_EQ(model->upgradeState(), Model::StateIdle);
    EXPECT_EQ(model->upgradeInProg(), Model::UpgradeInitiated);
    EXPECT_FALSE(model->enableRepair());
    EXPECT_EQ(model->packageSize(), 0U);
    EXPECT_TRUE(model->packageVersion().isEmpty());
}

TEST_F(ModelTest, EveryDisplayHasItsStateAndEachIsSignalled) {
    struct {
        int display;
        Model::StateUpgrade state;
    } const kRows[] = {
        {0, Model::StateUpgradeFileFound},
        {1, Model::StateUpgradeInProgress},
        {2, Model::StateUpgradeCompleted},
        {3, Model::StateUpgradeFileCorrupted},
        {4, Model::StateUpgradeFileIncompatible},
        {5, Model::StateUpgradeFailed},
        {6, Model::StateSysIntegrityFailed},
        {7, Model::StateUpgradeFileNotFound},
        {8, Model::StateNextBootSafe},
        {9, Model::StateIdle},
        {10, Model::StateUpgradeCompletedNoReboot},
        {11, Model::StateConnectACPower},
        {13, Model::StateConnectACPower},
        {255, Model::StateConnectACPower},
        {12, Model::StateExitUi},
        {12, Model::StateExitUi},
        {0, Model::StateExitUi},
    };
    QSignalSpy changed(model.get(), &Model::upgradeStateChanged);
    int announcements = 0;
    for (const auto& row : kRows) {
        link->display(static_cast<UpgradeDisplay>(row.display));
        EXPECT_EQ(model->upgradeState(), row.state) << row.display;
        EXPECT_EQ(changed.count(), ++announcements) << row.display;
    }
    EXPECT_EQ(Model::StateExitUi, 10);
    EXPECT_EQ(Model::StateConnectACPower, 12);
}

TEST_F(ModelTest, ElevenProgressMessagesFallOnTenStages) {
    constexpr int kStages[] = {0, 1, 2, 3, 3, 4, 5, 6, 7, 8, 9};
    QSignalSpy changed(model.get(), &Model::upgradeInProgChanged);
    for (int message = 5; message <= 15; ++message) {
        link->progress(static_cast<UpgradeProgressMsg>(message));
        EXPECT_EQ(model->upgradeInProg(), kStages[message - 5]) << message;
        EXPECT_EQ(changed.count(), message - 4);
    }
    for (const int outside : {5, 0, 4, 16, 255}) {
        link->progress(UpgradeProgressMsg::ProgressFinalOperation);
        link->progress(static_cast<UpgradeProgressMsg>(outside));
        EXPECT_EQ(model->upgradeInProg(), Model::UpgradeInitiated) << outside;
    }
}

TEST_F(ModelTest, TextsAreStoredAndSignalledOneByOneAlsoUnchanged) {
    QStringList seen;
    auto note = [&](const char* what, auto read) {
        return [&seen, what, read, this] { seen << QLatin1String(what) + (model.get()->*read)(); };
    };
    Model* m = model.get();
    QObject::connect(m, &Model::printerVersionChanged, m, note("version ", &Model::printerVersion));
    QObject::connect(m, &Model::printerDeviceNameChanged, m, note("device ", &Model::printerDeviceName));
    QObject::connect(m, &Model::printerRegionChanged, m, note("region ", &Model::printerRegion));
    QObject::connect(m, &Model::packageVersionChanged, m, note("package version ", &Model::packageVersion));
    QObject::connect(m, &Model::packageDeviceNameChanged, m,
                     note("package device ", &Model::packageDeviceName));
    QObject::connect(m, &Model::packageRegionChanged, m, note("package region ", &Model::packageRegion));

    const QStringList printer{QStringLiteral("version 1.4"), QStringLiteral("device Drücker"),
                              QStringLiteral("region ")};
    for (int time = 0; time < 2; ++time) {
        link->printerInfo("1.4",
                          "Dr\xC3\xBC"
                          "cker",
                          "");
        EXPECT_EQ(std::exchange(seen, {}), printer);
    }
    link->packageInfo("1.5", "\xFF", "EU");
    EXPECT_EQ(seen,
              (QStringList{QStringLiteral("package version 1.5"), QStringLiteral("package device \uFFFD"),
                           QStringLiteral("package region EU")}));
}

TEST_F(ModelTest, SizeAndRepairAreStoredAndSignalled) {
    QSignalSpy sizes(model.get(), &Model::packageSizeChanged);
    QSignalSpy repairs(model.get(), &Model::enableRepairChanged);
    link->packageSize(4294967295U);
    link->repairAvailable(true);
    EXPECT_EQ(model->packageSize(), 4294967295U);
    EXPECT_TRUE(model->enableRepair());
    link->repairAvailable(false);
    EXPECT_FALSE(model->enableRepair());
    EXPECT_EQ(sizes.count(), 1);
    EXPECT_EQ(repairs.count(), 2);
}

TEST_F(ModelTest, EverySlotIsOneAction) {
    struct {
        const char* slot;
        UserAction action;
    } const kRows[] = {
        {"userClickedUpgrade", UserAction::ActionUpgrade},
        {"userClickedCancel", UserAction::ActionCancel},
        {"userClickedRepair", UserAction::ActionRepair},
        {"rebootPrinter", UserAction::ActionReboot},
        {"uiExiting", UserAction::ActionUiExiting},
        {"userClickedOK", UserAction::ActionOk},
        {"userClickedClose", UserAction::ActionClose},
        {"userClickedOkNoReboot", UserAction::ActionOkNoReboot},
    };
    for (const auto& row : kRows) {
        ASSERT_TRUE(QMetaObject::invokeMethod(model.get(), row.slot)) << row.slot;
        EXPECT_EQ(link->takeActions(), std::vector{row.action}) << row.slot;
    }
}

TEST_F(ModelTest, AHandlerAfterItsEndDoesNothing) {
    const auto display = link->display;
    const auto info = link->printerInfo;
    const std::weak_ptr<FakeLink> linkAlive = link;
    link.reset();
    EXPECT_FALSE(linkAlive.expired()) << "the model owns the link";
    model.reset();
    EXPECT_TRUE(linkAlive.expired()) << "no cycle keeps it";
    display(UpgradeDisplay::DisplayFailed);
    info("1", "2", "3");
}

} // namespace
