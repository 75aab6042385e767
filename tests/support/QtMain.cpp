#include "tests/support/PlatformLeaks.h"

#include <QGuiApplication>
#include <QQuickWindow>

#include <gtest/gtest.h>

// Asked by the address sanitizer, where there is one.
extern "C" const char* __lsan_default_suppressions(); // NOLINT(bugprone-reserved-identifier): its name
const char* __lsan_default_suppressions() {           // NOLINT(bugprone-reserved-identifier)
    return kPlatformLeaks;
}

int main(int argc, char* argv[]) {
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication::setAttribute(Qt::AA_Use96Dpi);
    QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QQuickWindow::setSceneGraphBackend(QSGRendererInterface::Software);
    return RUN_ALL_TESTS();
}
