#include "app/KQApp.h"
#include "app/KQUpgradeApp.h"
#include "platform/os/InstanceLock.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QUrl>

namespace {

// On the printer the first font is the default one; on a host with fonts of its own, it has to be made so.
void registerFirstFont() {
    const int font = QFontDatabase::addApplicationFont(QStringLiteral(":/fonts/arial.ttf"));
    const QStringList families = QFontDatabase::applicationFontFamilies(font);
    if (!families.isEmpty())
        QGuiApplication::setFont(QFont(families.first()));
}

} // namespace

int main(int argc, char* argv[]) {
    const os::InstanceLock instance("UpgradeUI");
    if (instance.isHeldByAnother())
        return 0;

    KQApp::initialise("UpgradeUI", "38D1431E-6153-4773-8A5C-7BCA173263F7", "Upgrade UI");

    // The screens are laid out for the pixels of known displays, so a point has one size on all of them.
    QGuiApplication::setAttribute(Qt::AA_Use96Dpi);
    QGuiApplication application(argc, argv);
    // Between two screens no window is open; only the upgrade ends the program.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    // A calm popup needs no graphics hardware, and a printer may have none: OpenGL that fails ends the
    // program.
    QQuickWindow::setSceneGraphBackend(QSGRendererInterface::Software);
    registerFirstFont();

    KQUpgradeApp upgradeApp;
    return upgradeApp.run(application, QUrl(QStringLiteral("qrc:/qml/main.qml")));
}
