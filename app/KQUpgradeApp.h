#pragma once

#include "app/KQApp.h"

class KQLanguageSupport;
class KQUpgradeInterface;
class PICLIF;
class UpgradeInterface;

/// The application of the upgrade screens: the client of the property server, the link to the upgrader, the
/// model that the screens bind to and the language that they speak.
class KQUpgradeApp final : public KQApp {
    Q_OBJECT

public:
    /// Connects to the property server, builds the link and the model. The link listens from here on: what
    /// the upgrader said before, and says before the QML has loaded, stands in the model. Blocks while a
    /// server that does not answer is waited for.
    KQUpgradeApp();
    ~KQUpgradeApp() override;

protected:
    void setupQml(QGuiApplication& application,
                  const std::shared_ptr<QQmlApplicationEngine>& engine) override;

private:
    std::shared_ptr<PICLIF> m_client;
    std::shared_ptr<UpgradeInterface> m_link;
    std::shared_ptr<KQUpgradeInterface> m_model;
    std::unique_ptr<KQLanguageSupport> m_languageSupport;
};
