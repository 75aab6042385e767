#include "app/KQUpgradeApp.h"

#include "app/KQUpgradeInterface.h"
#include "app/UpgradeInterface.h"

#include <QQmlApplicationEngine>
#include <QQmlContext>

KQUpgradeApp::KQUpgradeApp() : m_link(createUpgradeInterface()), m_model(createUpgradeModel(m_link)) {}

KQUpgradeApp::~KQUpgradeApp() {
    // The close request that led here may still wait for its acknowledgement.
    m_link->stop();
}

void KQUpgradeApp::setupQml(QGuiApplication& /*application*/,
                            const std::shared_ptr<QQmlApplicationEngine>& engine) {
    qmlRegisterType<KQUpgradeInterface>("KQUpgradeInterface", 1, 0, "KQUpgradeInterface");
    engine->rootContext()->setContextProperty(QStringLiteral("QUpgradeModule"), m_model.get());
}
