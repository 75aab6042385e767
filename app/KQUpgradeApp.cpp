#include "app/KQUpgradeApp.h"

#include "app/KQUpgradeInterface.h"
#include "app/UpgradeInterface.h"

#include <QQmlApplicationEngine>
#include <QQmlContext>

KQUpgradeApp::KQUpgradeApp() : m_model(createUpgradeModel(createUpgradeInterface())) {}

KQUpgradeApp::~KQUpgradeApp() = default;

void KQUpgradeApp::setupQml(QGuiApplication& /*application*/,
                            const std::shared_ptr<QQmlApplicationEngine>& engine) {
    qmlRegisterType<KQUpgradeInterface>("KQUpgradeInterface", 1, 0, "KQUpgradeInterface");
    engine->rootContext()->setContextProperty(QStringLiteral("QUpgradeModule"), m_model.get());
}
