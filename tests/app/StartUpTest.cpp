#include "app/KQApp.h"
#include "prefs/ApplicationIdentity.h"

#include "tests/support/DeviceRootTest.h"

#include <QFile>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QTimer>
#include <QUrl>

namespace {

class EmptyApp final : public KQApp {
public:
    QStringList importPaths;

private:
    void setupQml(QGuiApplication& /*application*/,
                  const std::shared_ptr<QQmlApplicationEngine>& engine) override {
        importPaths = engine->importPathList();
        QTimer::singleShot(0, [] { QCoreApplication::exit(7); });
    }
};

class StartUp : public DeviceRootTest {
protected:
    QString made(const char* folder) {
        std::filesystem::create_directories(root() / folder);
        return QString::fromStdString(std::filesystem::canonical(root() / folder).string());
    }
};

TEST_F(StartUp, LooksForModulesAndPlugInsInThePrintersFolders) {
    // Each new path goes before the older ones.
    const QStringList imports{made("boot/qt/qml"), made("hard disk/qt/qml"), made("hard disk/QtDev")};
    const QStringList plugIns{made("boot/qt/plugins"), made("hard disk/qt/plugins")};
    KQApp::initialise("A", "B", "C");
    EXPECT_EQ(QCoreApplication::libraryPaths().mid(0, 2), plugIns);
    EXPECT_EQ(ApplicationIdentity::instance().applicationName(), "A");
    EXPECT_EQ(ApplicationIdentity::instance().componentGuid(), "B");
    EXPECT_EQ(ApplicationIdentity::instance().componentName(), "C");

    EmptyApp app;
    auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
    EXPECT_EQ(app.run(*application, QUrl(QStringLiteral("qrc:/no/such/file.qml"))), 7)
        << "the loop runs without a root file, and its value comes back";
    const int first = app.importPaths.indexOf(imports.first());
    EXPECT_LE(first, 1) << "at most QtCommon stands before";
    EXPECT_EQ(app.importPaths.mid(first, 3), imports);
}

TEST_F(StartUp, FixedAnswersOfTheIdentity) {
    const ApplicationIdentity& identity = ApplicationIdentity::instance();
    EXPECT_TRUE(identity.runsOnPrinter());
    EXPECT_EQ(identity.externalPropertyTimeout(), 3000U);
    EXPECT_EQ(identity.streamDevicePath(), L"PRN0:");
    EXPECT_EQ(identity.bootFolder(), L"/boot");
    EXPECT_EQ(identity.storeFolder(), L"/store");
    EXPECT_EQ(identity.hardDiskFolder(), L"/hard disk");
    EXPECT_EQ(identity.qtRootFolder(), L"/hard disk");
    EXPECT_EQ(identity.bootFontsFolder(), L"/boot/fonts/");
    EXPECT_EQ(identity.localFontsFolder(), L"fonts/");
    EXPECT_EQ(identity.controlsPrefix(), L"KC");
}

TEST_F(StartUp, ItsFontCoversTheTextsAndBecomesTheFirst) {
    KQApp::registerFirstFont(QStringLiteral(":/no/such/font.ttf"));
    KQApp::registerFirstFont(QStringLiteral(":/fonts/arial.ttf"));
    const QFontMetrics metrics{QGuiApplication::font()};
    for (const QChar c : QStringLiteral("ABCXYZabcxyz0123456789 .,:!?-%\u00E4\u00F6\u00FC\u00DF\u00E9\u00F1"))
        EXPECT_TRUE(metrics.inFont(c)) << QString(c).toStdString();
    QFile configuration(QStringLiteral(":/qt/etc/qt.conf"));
    ASSERT_TRUE(configuration.open(QIODevice::ReadOnly));
    EXPECT_EQ(configuration.readAll(), "[Platforms]\nWindowsArguments = fontengine=freetype\n");
}

} // namespace
