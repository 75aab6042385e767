#include "app/KQApp.h"

#include "platform/os/DeviceRoot.h"
#include "prefs/ApplicationIdentity.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
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
    QCoreApplication::addLibraryPath(hostPath(identity.qtRootFolder() + LR"(\qt\plugins)"));
    QCoreApplication::addLibraryPath(hostPath(identity.bootFolder() + LR"(\qt\plugins)"));
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
    return QGuiApplication::exec();
}
