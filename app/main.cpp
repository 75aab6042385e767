#include "app/KQApp.h"
#include "app/KQUpgradeApp.h"
#include "platform/os/InstanceLock.h"

#include <QGuiApplication>
#include <QUrl>

int main(int argc, char* argv[]) {
    const os::InstanceLock instance("UpgradeUI");
    if (instance.isHeldByAnother())
        return 0;

    KQApp::initialise("UpgradeUI", "38D1431E-6153-4773-8A5C-7BCA173263F7", "Upgrade UI");

    QGuiApplication application(argc, argv);
    KQApp::registerFirstFont(QStringLiteral(":/fonts/arial.ttf"));

    KQUpgradeApp upgradeApp;
    return upgradeApp.run(application, QUrl(QStringLiteral("qrc:/qml/main.qml")));
}
