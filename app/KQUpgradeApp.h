#pragma once

#include "app/KQApp.h"

class KQUpgradeInterface;
class UpgradeInterface;

/// The application of the upgrade screens: the link to the upgrader and the model that the screens bind to.
class KQUpgradeApp final : public KQApp {
    Q_OBJECT

public:
    /// Builds the link and the model. The link listens from here on: what the upgrader says before the QML
    /// has loaded stands in the model.
    KQUpgradeApp();
    ~KQUpgradeApp() override;

protected:
    void setupQml(QGuiApplication& application,
                  const std::shared_ptr<QQmlApplicationEngine>& engine) override;

private:
    std::shared_ptr<UpgradeInterface> m_link;
    std::shared_ptr<KQUpgradeInterface> m_model;
};
