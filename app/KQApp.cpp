#include "app/KQApp.h"

#include "platform/os/DeviceRoot.h"
#include "prefs/ApplicationIdentity.h"

#include <QCoreApplication>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QUrl>

namespace {

QString hostPath(const std::string& printerPath) { return QString::fromStdString(os::hostPath(printerPath)); }

QString hostPath(const std::wstring& printerPath) {
    return hostPath(QString::fromStdWString(printerPath).toStdString());
}

} // namespace

void KQApp::initialise(const std::string& applicationName, const std::string& componentGuid,
                       const std::string& componentName) {
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

KQApp::KQApp() = default;

KQApp::~KQApp() = default;

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
