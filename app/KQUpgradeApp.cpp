#include "app/KQUpgradeApp.h"

#include "app/KQUpgradeInterface.h"
#include "app/UpgradeInterface.h"
#include "picl/PICLIF.h"
#include "prefs/KQDisplayPreferences.h"
#include "prefs/KQLanguageSupport.h"
#include "property/PublishingPropertyManager.h"

#include <QQmlApplicationEngine>
#include <QQmlContext>

KQUpgradeApp::KQUpgradeApp() : m_client(std::make_shared<PICLIF>(threads(), propertyManager())) {
    connectToPrinter(m_client);
    m_link = createUpgradeInterface(m_client->agent(), propertyManager());
    m_model = createUpgradeModel(m_link);
}

KQUpgradeApp::~KQUpgradeApp() {
    // The close request that led here may still wait for its acknowledgement.
    m_link->stop();
    // AC power may be connecting this moment, on the thread that reads: nothing of ours is to end there.
    m_client->disconnect();
    m_languageSupport.reset();
    m_model.reset();
    m_link.reset();
    m_client.reset();
}

void KQUpgradeApp::setupQml(QGuiApplication& application,
                            const std::shared_ptr<QQmlApplicationEngine>& engine) {
    const std::shared_ptr<DisplayPreferences> preferences = m_client->displayPreferences();
    setDisplayPreferences(createKQDisplayPreferences(preferences));
    m_languageSupport = std::make_unique<KQLanguageSupport>(&application, preferences);

    qmlRegisterUncreatableType<KQDisplayPreferences>("", 1, 0, "KQDisplayPreferences",
                                                     QStringLiteral("Can't create KQDisplayPreferences!"));
    qmlRegisterType<KQUpgradeInterface>("KQUpgradeInterface", 1, 0, "KQUpgradeInterface");
    qmlRegisterUncreatableType<KQLanguageSupport>("", 1, 0, "KQLanguageSupport",
                                                  QStringLiteral("Can't create KQLanguageSupport!"));

    QQmlContext& context = *engine->rootContext();
    context.setContextProperty(QStringLiteral("KQDisplayPreferences"), displayPreferences());
    context.setContextProperty(QStringLiteral("QUpgradeModule"), m_model.get());
    context.setContextProperty(QStringLiteral("KQLanguageSupport"), m_languageSupport.get());
}
