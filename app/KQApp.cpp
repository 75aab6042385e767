#include "app/KQApp.h"

#include "picl/PICLIF.h"
#include "platform/ThreadFactory.h"
#include "platform/WideText.h"
#include "platform/os/Allocator.h"
#include "platform/os/DeviceRoot.h"
#include "prefs/ApplicationIdentity.h"
#include "prefs/FileHelpers.h"
#include "prefs/KQDisplayPreferences.h"
#include "prefs/KQLocalPreferences.h"
#include "property/PublishingPropertyManager.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QUrl>
#include <utility>

namespace {

constexpr std::uint16_t kPropertyServerPort = 9102;

// A path is bytes: it is converted once, as Qt converts the names of files.
QString hostPath(const std::string& printerPath) {
    return QFile::decodeName(QByteArray::fromStdString(os::hostPath(printerPath)));
}

QString hostPath(const std::wstring& printerPath) { return hostPath(toNarrow(printerPath)); }

} // namespace

void KQApp::initialise(const std::string& applicationName, const std::string& componentGuid,
                       const std::string& componentName) {
    os::returnFreedBlocks();
    ApplicationIdentity& identity = ApplicationIdentity::instance();
    identity.setApplicationName(applicationName);
    identity.setComponentGuid(componentGuid);
    identity.setComponentName(componentName);

    // The screens are laid out for the pixels of known displays, so a point has one size on all of them.
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    // A calm popup needs no graphics hardware, and a printer may have none: OpenGL that fails ends a program.
    QQuickWindow::setSceneGraphBackend(QSGRendererInterface::Software);
    QCoreApplication::addLibraryPath(hostPath(identity.qtRootFolder() + LR"(\qt\plugins)"));
    QCoreApplication::addLibraryPath(hostPath(identity.bootFolder() + LR"(\qt\plugins)"));
}

void KQApp::registerFirstFont(const QString& file) {
    const QStringList families =
        QFontDatabase::applicationFontFamilies(QFontDatabase::addApplicationFont(file));
    // On the printer the first font is the default one; on a host with fonts of its own, it has to be made
    // so.
    if (!families.isEmpty())
        QGuiApplication::setFont(QFont(families.first()));
}

KQApp::KQApp()
    : m_threads(std::make_shared<ThreadFactory>(kThreadPriority)),
      m_propertyManager(std::make_shared<PublishingPropertyManager>(
          m_threads, kThreadPriority, kThreadPriority, ApplicationIdentity::instance().preferencesPath(),
          ApplicationIdentity::instance().preferencesOverridePath())) {
    loadFonts(absolutePath(ApplicationIdentity::instance().localFontsFolder()));
    loadFonts(ApplicationIdentity::instance().bootFontsFolder());
}

KQApp::~KQApp() = default;

void KQApp::loadFonts(const std::wstring& folder) {
    static const QStringList kFonts{QStringLiteral("*.ttf"), QStringLiteral("*.ttc"),
                                    QStringLiteral("*.otf")};
    for (const std::wstring& name : listFolder(folder)) {
        const QFileInfo file(hostPath(folder + name));
        if (QDir::match(kFonts, file.fileName()) && file.isFile())
            QFontDatabase::addApplicationFont(file.filePath());
    }
}

void KQApp::connectToPrinter(const std::shared_ptr<PICLIF>& client) {
    m_localPreferences = std::make_shared<KQLocalPreferences>(m_propertyManager);
    m_propertyManager->startWorker();
    if (!connect(*client))
        client->disconnect();
    client->completeSetup();
}

bool KQApp::connect(PICLIF& client) const {
    const ApplicationIdentity& identity = ApplicationIdentity::instance();
    if (identity.runsOnPrinter())
        return client.connectToDevice(identity.streamDevicePath());
    const IPv4Address address(m_localPreferences->printerIPAddress().toStdString());
    return address.isValid() && client.connectToSocket(address, kPropertyServerPort);
}

void KQApp::setDisplayPreferences(std::shared_ptr<KQDisplayPreferences> preferences) {
    m_displayPreferences = std::move(preferences);
}

int KQApp::run(QGuiApplication& application, const QUrl& rootFile) {
    const ApplicationIdentity& identity = ApplicationIdentity::instance();
    const auto engine = std::make_shared<QQmlApplicationEngine>();
    engine->addImportPath(hostPath(identity.hardDiskFolder() + LR"(\QtDev)"));
    engine->addImportPath(hostPath(identity.qtRootFolder() + LR"(\qt\qml)"));
    engine->addImportPath(hostPath(identity.bootFolder() + LR"(\qt\qml)"));
    // From the program's folder: QML must never be loaded from a current directory that anyone can write.
    engine->addImportPath(hostPath(os::programFolder() + R"(\..\..\..\..\QtCommon)"));
    setupQml(application, engine);
    engine->load(rootFile);
    // Between two screens no window is open; only the upgrade ends the program.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    return QGuiApplication::exec();
}
