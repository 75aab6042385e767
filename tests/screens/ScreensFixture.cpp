#include "tests/screens/ScreensFixture.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QQmlContext>
#include <QQmlEngine>
#include <QSignalSpy>
#include <QTest>

#include <chrono>

bool eventuallyShown(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, 20'000); }

ScreensTest::ScreensTest() {
    qmlRegisterType<KQUpgradeInterface>("KQUpgradeInterface", 1, 0, "KQUpgradeInterface");
    engine.addImportPath(QStringLiteral(CONTROLS_FOLDER));
    engine.rootContext()->setContextProperty(QStringLiteral("QUpgradeModule"), model.get());
    QObject::connect(&engine, &QQmlEngine::warnings, &engine, [this](const QList<QQmlError>& errors) {
        for (const QQmlError& error : errors)
            warnings << error.toString();
    });
}

void ScreensTest::load() {
    engine.load(QUrl(QStringLiteral("qrc:/qml/main.qml")));
    ASSERT_EQ(engine.rootObjects().size(), 1) << warnings.join(QLatin1Char('\n')).toStdString();
    window = qobject_cast<QQuickWindow*>(engine.rootObjects().first());
    ASSERT_NE(window, nullptr);
    popup = find<QObject>("mainHandler");
    resize(800, 480);
}

void ScreensTest::resize(int width, int height) {
    window->setWidth(width);
    window->setHeight(height);
    QCoreApplication::processEvents();
}

void ScreensTest::awaitFrame() {
    QSignalSpy drawn(window, &QQuickWindow::frameSwapped);
    window->update();
    EXPECT_TRUE(eventuallyShown([&drawn] { return !drawn.isEmpty(); }));
}

void ScreensTest::show(UpgradeDisplay display) {
    link->display(display);
    QCoreApplication::processEvents();
}

QString ScreensTest::text(const char* screenName, const char* textName) {
    return find<QObject>(textName, screen(screenName))->property("text").toString();
}

double ScreensTest::barValue() {
    return find<QObject>("progressBar", screen("upgradeInProgress"))->property("value").toDouble();
}

void ScreensTest::press(QQuickItem* button, Press way) {
    ASSERT_TRUE(eventuallyShown([this] { return window->isExposed() && window->isActive(); }));
    const QPoint middle = button->mapToScene({button->width() / 2, button->height() / 2}).toPoint();
    switch (way) {
    case Press::Mouse:
        QTest::mouseClick(window, Qt::LeftButton, {}, middle);
        break;
    case Press::Touch: {
        static QTouchDevice* const device = QTest::createTouchDevice();
        QTest::touchEvent(window, device).press(0, middle, window);
        QTest::touchEvent(window, device).release(0, middle, window);
        break;
    }
    case Press::Enter:
        QTest::keyClick(window, Qt::Key_Enter);
        break;
    case Press::Return:
        QTest::keyClick(window, Qt::Key_Return);
        break;
    case Press::Accessible:
        QAccessible::queryAccessibleInterface(button)->actionInterface()->doAction(
            QAccessibleActionInterface::pressAction());
        break;
    }
    QCoreApplication::processEvents();
}
