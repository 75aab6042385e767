#pragma once

#include "app/KQUpgradeInterface.h"

#include "tests/support/FakeLink.h"

#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

/// Returns true as soon as @p condition holds while events are processed, false if it does not within 20
/// seconds.
bool eventuallyShown(const std::function<bool()>& condition);

/// The real root file over a model whose link is a fake.
class ScreensTest : public ::testing::Test {
protected:
    ScreensTest();

    /// Loads the root file. What the link said before stands in the model.
    void load();

    /// Returns after the event loop has shown or hidden the window.
    void show(UpgradeDisplay display);
    void stage(int message) { link->progress(static_cast<UpgradeProgressMsg>(message)); }

    template <typename Type>
    Type* find(const char* name, QObject* in = nullptr) {
        auto* found = (in != nullptr ? in : window)->findChild<Type*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    QQuickItem* screen(const char* name) { return find<QQuickItem>(name); }
    QString text(const char* screenName, const char* textName);
    double barValue();

    enum class Press { Mouse, Touch, Enter, Return, Accessible };
    void press(QQuickItem* button, Press way);
    void resize(int width, int height);

    /// Waits until the window has drawn what was changed: rows place their items only then.
    void awaitFrame();

    std::shared_ptr<FakeLink> link = std::make_shared<FakeLink>();
    std::shared_ptr<KQUpgradeInterface> model = createUpgradeModel(link);
    QQmlApplicationEngine engine;
    QQuickWindow* window = nullptr;
    QObject* popup = nullptr;
    QStringList warnings;
};
