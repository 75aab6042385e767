#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QTimer>
#include <QUrl>

#include <unistd.h>

/// The smallest Qt Quick program: tells on standard output that its root file is loaded, draws, and ends.
int main(int argc, char* argv[]) {
    QGuiApplication application(argc, argv);
    QQuickWindow::setSceneGraphBackend(QSGRendererInterface::Software);
    QQmlApplicationEngine engine;
    engine.load(QUrl(QStringLiteral("qrc:/minimal.qml")));
    if (::write(STDOUT_FILENO, "r", 1) != 1)
        return 1;
    auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().value(0));
    QObject::connect(window, &QQuickWindow::frameSwapped, &application, &QGuiApplication::quit,
                     Qt::QueuedConnection);
    return QGuiApplication::exec();
}
