#include "tests/screens/ScreensFixture.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

namespace {

using enum UpgradeDisplay;
using enum UserAction;

struct ScreenRow {
    UpgradeDisplay display;
    const char* state;
    const char* screen;
    bool enableClose;
    const char* header;
    int iconType; // 1 alert, 2 question, 3 in progress, 4 success, 5 error
    const char* bodyText;
    const char* button;
    const char* label;
    UserAction action;
};

constexpr ScreenRow kScreens[] = {
    {DisplayConnectACPower, "connectACPower", "connectACPower", true, "Upgrade Available", 1,
     "Upgrade file found. Connect AC power to initiate upgrade.\n\nNote: Do not unplug AC power until the "
     "upgrade is "
     "complete.",
     "cancelButton", "Cancel", ActionCancel},
    {DisplayFileFound, "upgradeFileFound", "upgradeFileFound", true, "Upgrade Available", 2,
     "Upgrade file found. Upgrade now?\n\nNote: All current and queued print jobs will be cancelled once "
     "upgrade "
     "starts. This may take a few minutes. Please do not power off your printer. Remove USB drive after the "
     "upgrade "
     "completes.",
     "upgradeButton", "Upgrade", ActionUpgrade},
    {DisplayInProgress,
     "upgradeInProgress",
     "upgradeInProgress",
     false,
     "Upgrade",
     3,
     nullptr,
     nullptr,
     nullptr,
     {}},
    {DisplayCompleted, "upgradeCompleted", "upgradeCompleted", false, "Upgrade", 4,
     "Upgrade to Version 1.5 <b>%1</b> is successful!", "rebootButton", "Reboot Now", ActionReboot},
    {DisplayCompletedNoReboot, "upgradeCompletedNoReboot", "upgradeCompletedNoReboot", false, "Upgrade", 4,
     "Upgrade Complete.", "okButton", "OK", ActionOkNoReboot},
    {DisplayFileCorrupted, "upgradeFileCorrupted", "upgradeFileCorrupted", true, "Upgrade Failed", 1,
     "Upgrade file may be corrupted. Please check that you have a valid upgrade file or try downloading the "
     "file "
     "again. Re-insert USB flash drive to try again.",
     "okButton", "OK", ActionOk},
    {DisplayFailed, "upgradeFailed", "upgradeFailed", true, "Upgrade Failed", 1,
     "An error has occurred during upgrade. Re-insert USB flash drive to try again.", "okButton", "OK",
     ActionOk},
    {DisplayFileNotFound, "upgradeFileNotFound", "upgradeFileNotFound", true, "No Upgrade File Found", 1,
     "Unable to find upgrade file. Please check that a USB flash drive with valid upgrade file is inserted "
     "and try "
     "again.",
     "okButton", "OK", ActionOk},
    {DisplayFileIncompatible, "upgradeFileIncompatible", "upgradeFileIncompatible", true,
     "Incompatible Upgrade File", 1,
     "Upgrade file is not compatible with device. Please check that you have a newer version and the correct "
     "region. "
     "Re-insert USB flash drive to try again.",
     "okButton", "OK", ActionOk},
    {DisplayNextBootSafe, "nextBootSafe", "nextBootSafe", false, "Upgrade Failed", 1,
     "An error has occurred during upgrade and the printer needs to reboot in recovery mode.", "rebootButton",
     "Reboot Now", ActionReboot},
    {DisplaySysIntegrityFailed, "sysIntegrityFail", "systemIntegrityFailed", false, "Error Occurred", 5,
     "Printer unable to boot due to corrupted system files. Please insert a USB flash drive with valid "
     "upgrade file "
     "to start repair.",
     "repairButton", "Repair", ActionRepair},
};

class Screens : public ScreensTest {
protected:
    void SetUp() override { load(); }
    void TearDown() override {
        EXPECT_TRUE(warnings.isEmpty()) << warnings.join(QLatin1Char('\n')).toStdString();
    }

    void expectScreen(const ScreenRow& row) {
        EXPECT_TRUE(window->isVisible()) << row.state;
        EXPECT_EQ(popup->property("state").toString(), QLatin1String(row.state));
        EXPECT_EQ(popup->property("enableClose").toBool(), row.enableClose) << row.state;
        EXPECT_EQ(popup->property("header").toString(), QLatin1String(row.header));
        EXPECT_EQ(popup->property("iconType").toInt(), row.iconType) << row.state;
        for (const ScreenRow& other : kScreens)
            EXPECT_EQ(screen(other.screen)->isVisible(), &row == &other) << row.state << ' ' << other.screen;
        if (row.button == nullptr)
            return;
        EXPECT_EQ(text(row.screen, "bodyText"), QLatin1String(row.bodyText));
        EXPECT_EQ(find<QObject>(row.button, screen(row.screen))->property("textToDisplay").toString(),
                  QLatin1String(row.label));
    }

    // Makes the QML timers tick as fast as they can; what a tick does stays.
    void hurry(const char* timer, QObject* in) { find<QObject>(timer, in)->setProperty("interval", 1); }
};

TEST_F(Screens, EachStateShowsItsScreenHeaderIconAndTexts) {
    link->packageInfo("1.5 <b>%1</b>", "", "");
    const ScreenRow* appearing = &kScreens[0];
    std::size_t appearances = 0;
    // A platform can draw the first frame as soon as the window is visible.
    QObject::connect(window, &QWindow::visibleChanged, window, [&](bool visible) {
        if (!visible)
            return;
        ++appearances;
        expectScreen(*appearing);
    });
    for (const ScreenRow& row : kScreens) {
        appearing = &row;
        show(row.display);
        expectScreen(row);
        show(DisplayIdle);
        show(row.display);
    }
    EXPECT_EQ(appearances, std::size(kScreens) + 1) << "the window stays visible between two screens";
}

TEST_F(Screens, EveryButtonReactsToEveryKindOfPress) {
    link->repairAvailable(true);
    for (const Press way : {Press::Mouse, Press::Touch, Press::Enter, Press::Return, Press::Accessible}) {
        for (const ScreenRow& row : kScreens) {
            show(row.display);
            if (row.button == nullptr)
                continue;
            press(find<QQuickItem>(row.button, screen(row.screen)), way);
            EXPECT_EQ(link->takeActions(), std::vector{row.action})
                << row.state << ' ' << static_cast<int>(way);
        }
    }
}

TEST_F(Screens, CancelAndCloseAreForTheHandOnly) {
    show(DisplayFileFound);
    press(find<QQuickItem>("cancelButton", screen("upgradeFileFound")), Press::Touch);
    EXPECT_EQ(link->takeActions(), std::vector{ActionCancel});
    press(screen("upgradeFileFound"), Press::Enter);
    EXPECT_EQ(link->takeActions(), std::vector{ActionUpgrade}) << "also after Cancel was touched";
    for (const ScreenRow& row : kScreens) {
        show(row.display);
        press(find<QQuickItem>("closeButton"), Press::Touch);
        EXPECT_EQ(link->takeActions(), row.enableClose ? std::vector{ActionClose} : std::vector<UserAction>())
            << row.state;
    }
}

TEST_F(Screens, AHiddenOrDisabledButtonDoesNotReact) {
    link->repairAvailable(true);
    show(DisplayInProgress);
    const auto buttons = window->findChildren<QQuickItem*>(QRegularExpression(QStringLiteral("Button$")));
    EXPECT_GE(buttons.size(), static_cast<int>(std::size(kScreens)));
    for (QQuickItem* button : buttons) {
        for (const Press way : {Press::Mouse, Press::Touch, Press::Enter, Press::Return, Press::Accessible})
            press(button, way);
        EXPECT_TRUE(link->takeActions().empty()) << button->objectName().toStdString();
    }
}

TEST_F(Screens, AClickAnywhereReturnsTheKeyboardToTheDefaultButton) {
    show(DisplayCompletedNoReboot);
    for (QQuickItem* place : {screen("upgradeCompletedNoReboot"), find<QQuickItem>("closeButton")}) {
        QWindow other;
        other.show();
        ASSERT_TRUE(eventuallyShown([&other] {
            other.requestActivate();
            return other.isActive();
        }));
        QTest::mouseClick(window, Qt::LeftButton, {},
                          place->mapToScene({place->width() / 2, place->height() / 2}).toPoint());
        press(place, Press::Enter);
        EXPECT_EQ(link->takeActions(), std::vector{ActionOkNoReboot}) << place->objectName().toStdString();
    }
}

TEST_F(Screens, APressThatLeavesTheButtonIsNone) {
    show(DisplayFailed);
    ASSERT_TRUE(eventuallyShown([this] { return window->isExposed(); }));
    auto* button = find<QQuickItem>("okButton", screen("upgradeFailed"));
    QTest::mousePress(window, Qt::LeftButton, {}, button->mapToScene({5, 5}).toPoint());
    EXPECT_TRUE(button->property("pressed").toBool());
    QTest::mouseMove(window, button->mapToScene({-60, -60}).toPoint());
    QTest::mouseRelease(window, Qt::LeftButton, {}, button->mapToScene({-60, -60}).toPoint());
    EXPECT_TRUE(link->takeActions().empty());
}

TEST_F(Screens, RepairWaitsUntilItIsAvailable) {
    show(DisplaySysIntegrityFailed);
    auto* button = find<QQuickItem>("repairButton", screen("systemIntegrityFailed"));
    for (const bool available : {false, true, false}) {
        link->repairAvailable(available);
        for (const Press way : {Press::Mouse, Press::Touch, Press::Return, Press::Accessible}) {
            press(button, way);
            EXPECT_EQ(link->takeActions().size(), available ? 1U : 0U) << static_cast<int>(way);
        }
    }
}

TEST_F(Screens, IdleHidesTheWindowAndClosingItIsRefused) {
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(popup->property("state").toString(), QStringLiteral("idle"));
    show(DisplayFailed);
    EXPECT_FALSE(window->close());
    EXPECT_TRUE(window->isVisible());
    show(DisplayIdle);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(popup->property("state").toString(), QString());
    show(DisplayFileFound);
    EXPECT_TRUE(window->isVisible());
    press(screen("upgradeFileFound"), Press::Return);
    EXPECT_EQ(link->takeActions(), std::vector{ActionUpgrade}) << "the keyboard is back with the window";
}

TEST_F(Screens, EachStageHasItsTextAndPercentage) {
    constexpr struct {
        const char* text;
        int percent;
    } kStages[] = {
        {"Initiating the software upgrade...", 1},
        {"Preparing for the software upgrade...", 3},
        {"Copying the package...", 5},
        {"Validating the package...", 45},
        {"Validating the package...", 45},
        {"Validating the configuration...", 47},
        {"Backingup the current version...", 49},
        {"Ending other applications...", 50},
        {"Extracting the package...", 52},
        {"Verifying software upgrade...", 90},
        {"Executing post upgrade activities...", 95},
    };
    EXPECT_EQ(barValue(), 1);
    show(DisplayInProgress);
    int message = 5;
    for (const auto& row : kStages) {
        stage(message++);
        EXPECT_EQ(text("upgradeInProgress", "stageText"), QLatin1String(row.text));
        EXPECT_EQ(barValue(), row.percent);
        EXPECT_EQ(text("upgradeInProgress", "progressText"),
                  QStringLiteral("Upgrade Progress: %1%").arg(row.percent));
    }
    stage(5);
    EXPECT_EQ(barValue(), 1) << "from the start again";
}

TEST_F(Screens, LongStagesAreFilledInByThePackageSize) {
    const struct {
        const char* name;
        unsigned int bytes;
        int message;
        std::vector<double> values; // of the bar, tick by tick
    } kRows[] = {
        {"copy of 15.5 MB", 15'500'000, 7, {13, 21, 29, 37, 45}},
        {"extraction of 15.5 MB", 15'500'000, 13, {58, 65, 71, 77, 84, 90}},
        {"copy just short of two steps", 6'199'999, 7, {45}},
        {"copy under 3.1 MB", 3'099'999, 7, {45}},
        {"extraction under 2583334 bytes", 2'583'333, 13, {90}},
        {"copy of nothing", 0, 7, {45}},
        {"extraction of 5 MB", 5'166'667, 13, {71, 90}},
    };
    show(DisplayInProgress);
    for (const auto& row : kRows) {
        link->packageSize(row.bytes);
        QObject* timer =
            find<QObject>(row.message == 7 ? "copyTimer" : "extractTimer", screen("upgradeInProgress"));
        EXPECT_EQ(timer->property("interval").toInt(), 1000) << row.name;
        timer->setProperty("interval", 1);
        std::vector<double> seen;
        QSignalSpy changed(find<QObject>("progressBar", screen("upgradeInProgress")), SIGNAL(valueChanged()));
        stage(row.message);
        while (timer->property("running").toBool() && changed.wait(20'000))
            seen.push_back(barValue());
        EXPECT_EQ(seen, row.values) << row.name;
        EXPECT_FALSE(timer->property("running").toBool()) << row.name;
        timer->setProperty("interval", 1000);
        show(DisplayIdle); // brings the timers back to their starts
        stage(5);
        show(DisplayInProgress);
    }
}

TEST_F(Screens, TheNextStageEndsATimerAndAHiddenScreenRewindsIt) {
    link->packageSize(4'294'967'295U);
    show(DisplayInProgress);
    stage(7);
    QObject* timer = find<QObject>("copyTimer", screen("upgradeInProgress"));
    EXPECT_EQ(screen("upgradeInProgress")->property("copySteps").toInt(), 1385);
    hurry("copyTimer", screen("upgradeInProgress"));
    ASSERT_TRUE(eventuallyShown([this] { return barValue() > 6; }));
    EXPECT_EQ(text("upgradeInProgress", "progressText"),
              QStringLiteral("Upgrade Progress: %1%").arg(barValue()));
    timer->setProperty("interval", 1000);
    show(DisplayFailed);
    EXPECT_EQ(timer->property("realPercent").toDouble(), 5);
    show(DisplayInProgress);
    stage(8);
    EXPECT_EQ(barValue(), 45);
    EXPECT_FALSE(timer->property("running").toBool());
}

TEST_F(Screens, TheCountdownRunsOnceAndAPressDoesNotStopIt) {
    QObject* timer = find<QObject>("countdownTimer", screen("upgradeCompleted"));
    EXPECT_EQ(timer->property("interval").toInt(), 1000);
    show(DisplayFailed);
    EXPECT_FALSE(timer->property("running").toBool());
    hurry("countdownTimer", screen("upgradeCompleted"));
    auto* shown = find<QObject>("countdownText", screen("upgradeCompleted"));
    QSignalSpy changed(shown, SIGNAL(textChanged()));
    show(DisplayCompleted);
    press(find<QQuickItem>("rebootButton", screen("upgradeCompleted")), Press::Return);
    ASSERT_TRUE(eventuallyShown([&] { return link->actions.size() == 2; }));
    EXPECT_EQ(link->takeActions(), (std::vector{ActionReboot, ActionReboot})) << "at the press, and at 0";
    EXPECT_EQ(changed.count(), 15);
    EXPECT_EQ(text("upgradeCompleted", "countdownText"),
              QStringLiteral("Printer will reboot in 0 seconds..."));
    EXPECT_FALSE(timer->property("running").toBool());
}

TEST_F(Screens, ExitTellsTheUpgraderThenQuits) {
    QSignalSpy quit(&engine, &QQmlEngine::quit);
    show(DisplayExitUi);
    show(DisplayExitUi);
    EXPECT_EQ(link->takeActions(), std::vector{ActionUiExiting});
    EXPECT_EQ(quit.count(), 1);
    EXPECT_FALSE(window->isVisible());
}

struct MeasureRow {
    const char* screen;
    const char* item;
    const char* property;
    double small; // on 480 pixels of width
    double large;
};

TEST_F(Screens, PlacesAndSizesFollowTheDisplay) {
    constexpr MeasureRow kRows[] = {
        {"upgradeInProgress", "noteText", "y", 130, 197},
        {"upgradeInProgress", "stageText", "pointSize", 7, 12},
        {"upgradeFileIncompatible", "bodyText", "y", 57, 85},
        {"systemIntegrityFailed", "bodyText", "y", 57, 85},
        {"upgradeCompleted", "rebootButton", "width", 98, 172},
        {"nextBootSafe", "rebootButton", "width", 98, 172},
        {"upgradeFileFound", "upgradeButton", "width", 86, 150},
        {"upgradeFileFound", "cancelButton", "width", 86, 150},
        {"upgradeCompleted", "progressBar", "value", 100, 100},
    };
    for (const bool isSmall : {true, false}) {
        isSmall ? resize(480, 272) : resize(800, 480);
        for (const MeasureRow& row : kRows) {
            const QObject* item = find<QObject>(row.item, screen(row.screen));
            const bool isFont = QByteArray(row.property) == "pointSize";
            const double value = isFont ? item->property("font").value<QFont>().pointSizeF()
                                        : item->property(row.property).toDouble();
            EXPECT_EQ(value, isSmall ? row.small : row.large)
                << row.screen << ' ' << row.item << ' ' << row.property;
        }

        show(DisplayFileFound);
        awaitFrame();
        auto place = [this](const char* name, const char* in) {
            const auto* item = find<QQuickItem>(name, screen(in));
            return item->mapRectToItem(screen(in), {0, 0, item->width(), item->height()});
        };
        const double margin = isSmall ? 12 : 24;
        const QRectF cancel = place("cancelButton", "upgradeFileFound");
        const QRectF upgrade = place("upgradeButton", "upgradeFileFound");
        EXPECT_EQ(cancel.right(), screen("upgradeFileFound")->width() - margin);
        EXPECT_EQ(cancel.bottom(), screen("upgradeFileFound")->height() - margin);
        EXPECT_EQ(cancel.left() - upgrade.right(), margin);
        EXPECT_EQ(cancel.size(), upgrade.size());

        show(DisplayInProgress);
        const QRectF bar = place("progressBar", "upgradeInProgress");
        const QRectF stageText = place("stageText", "upgradeInProgress");
        EXPECT_EQ(stageText.topLeft(), bar.bottomLeft() + QPointF(0, 2));

        show(DisplayCompleted);
        const double rowMargin = isSmall ? 6 : 12;
        const QRectF full = place("progressBar", "upgradeCompleted");
        EXPECT_EQ(full.top() - place("bodyText", "upgradeCompleted").bottom(), rowMargin);
        EXPECT_EQ(place("countdownText", "upgradeCompleted").top() - full.bottom(), rowMargin);
    }
}

TEST_F(Screens, TheWindowStaysOnTopWithoutAFrameAndFillsTheDisplay) {
    EXPECT_EQ(window->flags() & ~Qt::WindowType_Mask, Qt::FramelessWindowHint | Qt::CustomizeWindowHint |
                                                          Qt::WindowStaysOnTopHint |
                                                          Qt::X11BypassWindowManagerHint);
    EXPECT_EQ(window->color(), QColor(0x26, 0x33, 0x3f));
    link->printerInfo("1.4", "", "");
    EXPECT_EQ(screen("systemIntegrityFailed")->property("version").toString(), QStringLiteral("1.4"));
    EXPECT_EQ(text("upgradeInProgress", "noteText"),
              QStringLiteral("Note: This may take a few minutes. Please do not power off your printer."));
    EXPECT_EQ(find<QObject>("cancelButton", screen("upgradeFileFound"))->property("textToDisplay").toString(),
              QStringLiteral("Cancel"));
}

class ScreensBeforeLoad : public ScreensTest {};

TEST_F(ScreensBeforeLoad, WhatCameBeforeTheyLoadedIsShown) {
    link->packageInfo("1.5", "", "");
    stage(13);
    show(DisplayInProgress);
    load();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(barValue(), 52);
    EXPECT_TRUE(screen("upgradeInProgress")->isVisible());
}

TEST_F(ScreensBeforeLoad, AnExitThatCameBeforeTheyLoadedQuits) {
    QSignalSpy quit(&engine, &QQmlEngine::quit);
    show(DisplayExitUi);
    load();
    EXPECT_EQ(link->takeActions(), std::vector{ActionUiExiting});
    EXPECT_EQ(quit.count(), 1);
}

} // namespace
