#include <QGuiApplication>
#include <QQuickWindow>

#include <gtest/gtest.h>

int main(int argc, char* argv[]) {
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication::setAttribute(Qt::AA_Use96Dpi);
    QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QQuickWindow::setSceneGraphBackend(QSGRendererInterface::Software);
    return RUN_ALL_TESTS();
}
