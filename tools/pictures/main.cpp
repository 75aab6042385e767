#include "app/KQApp.h"
#include "app/KQUpgradeInterface.h"
#include "app/UpgradeInterface.h"
#include "platform/os/DeviceRoot.h"
#include "prefs/KQTranslator.h"

#include <QDir>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPixmap>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QQuickWindow>
#include <QScreen>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <span>

namespace {

using enum UpgradeDisplay;

struct Picture {
    const char* name;
    UpgradeDisplay display;
};

constexpr Picture kPictures[] = {
    {"connect-ac-power", DisplayConnectACPower},
    {"file-found", DisplayFileFound},
    {"in-progress", DisplayInProgress},
    {"completed", DisplayCompleted},
    {"completed-no-reboot", DisplayCompletedNoReboot},
    {"file-corrupted", DisplayFileCorrupted},
    {"file-not-found", DisplayFileNotFound},
    {"file-incompatible", DisplayFileIncompatible},
    {"failed", DisplayFailed},
    {"system-integrity-failed", DisplaySysIntegrityFailed},
    {"next-boot-safe", DisplayNextBootSafe},
};

// What is taken in the other languages, on the display with the least room.
constexpr Picture kTranslatedPictures[] = {{"file-found", DisplayFileFound}, {"completed", DisplayCompleted}};

constexpr QSize kDisplays[] = {{480, 272}, {800, 480}, {1024, 600}};

constexpr auto kStage = UpgradeProgressMsg::ProgressExtractingPkg;

constexpr int kSettleMs = 600; // the bar slides, the icon is drawn in the next frame

/// A link without an upgrader: what is shown is said through the model.
class NoLink final : public UpgradeInterface {
public:
    NoLink() : UpgradeInterface({}) {}
    void start() override {}
    void sendUserAction(UserAction) override {}
    void setDisplayHandler(DisplayHandler) override {}
    void setProgressHandler(ProgressHandler) override {}
    void setPrinterInfoHandler(InfoHandler) override {}
    void setPackageInfoHandler(InfoHandler) override {}
    void setPackageSizeHandler(PackageSizeHandler) override {}
    void setRepairAvailableHandler(RepairAvailableHandler) override {}
    void stop() override {}
};

void settle() {
    QEventLoop loop;
    QTimer::singleShot(kSettleMs, &loop, &QEventLoop::quit);
    loop.exec();
}

bool takePicture(QQuickWindow& window, const QString& file) {
    const auto grabbed = QGuiApplication::primaryScreen()->grabWindow(window.winId());
    return !grabbed.isNull() && grabbed.save(file, "PNG");
}

bool takePictures(QQuickWindow& window, KQUpgradeInterface& model, const QDir& folder,
                  std::span<const Picture> pictures, std::span<const QSize> displays) {
    for (const QSize& display : displays) {
        window.resize(display);
        for (const Picture& picture : pictures) {
            // From the start each time: a stage that is under way fills the bar, seen or unseen.
            model.takeProgress(UpgradeProgressMsg::ProgressInitiated);
            model.takeProgress(kStage);
            model.takeDisplay(picture.display);
            settle();
            const QString file = folder.filePath(QStringLiteral("%1-%2x%3.png")
                                                     .arg(QLatin1String(picture.name))
                                                     .arg(display.width())
                                                     .arg(display.height()));
            if (!takePicture(window, file)) {
                std::fprintf(stderr, "screen-pictures: cannot write %s\n", qPrintable(file));
                return false;
            }
            std::puts(qPrintable(file));
        }
    }
    return true;
}

// A folder for each language but the first, in which the texts are written.
bool takeTranslatedPictures(QQmlEngine& engine, QQuickWindow& window, KQUpgradeInterface& model,
                            const QDir& folder) {
    KQTranslator languages(qGuiApp, "english", nullptr);
    for (int index = 1; index < languages.supportedLanguages().size(); ++index) {
        const QString name = QString::fromStdString(languages.setLanguage(static_cast<std::uint8_t>(index)));
        engine.retranslate();
        if (!folder.mkpath(name) || !takePictures(window, model, QDir(folder.filePath(name)),
                                                  kTranslatedPictures, std::span(kDisplays).first(1)))
            return false;
    }
    return true;
}

} // namespace

int main(int argc, char* argv[]) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    KQApp::initialise("UpgradeUI", "", "");
    QGuiApplication application(argc, argv);
    if (argc != 2 || !QDir(QString::fromLocal8Bit(argv[1])).exists()) {
        std::fputs("Usage: screen-pictures FOLDER\nLeaves a picture of every screen at every display size "
                   "there, and some in a folder for each "
                   "language.\n",
                   stderr);
        return 2;
    }
    KQApp::registerFirstFont(QStringLiteral(":/fonts/arial.ttf"));
    QFontDatabase::addApplicationFont(
        QString::fromStdString(os::hostPath("/boot/fonts/DroidSansFallbackFull.ttf")));

    qmlRegisterType<KQUpgradeInterface>("KQUpgradeInterface", 1, 0, "KQUpgradeInterface");
    KQUpgradeInterface model(std::make_shared<NoLink>());
    model.takePackageInfo("1.5.0", "Label Printer", "EU");
    model.takePackageSize(15'500'000);
    model.takeRepairAvailable(true);

    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral(CONTROLS_FOLDER));
    engine.rootContext()->setContextProperty(QStringLiteral("QUpgradeModule"), &model);
    engine.load(QUrl(QStringLiteral("qrc:/qml/main.qml")));
    auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().value(0));
    if (window == nullptr)
        return EXIT_FAILURE;
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    return takePictures(*window, model, folder, kPictures, kDisplays) &&
                   takeTranslatedPictures(engine, *window, model, folder)
               ? EXIT_SUCCESS
               : EXIT_FAILURE;
}
