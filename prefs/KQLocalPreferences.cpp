#include "prefs/KQLocalPreferences.h"

#include "prefs/LocalPreferences.h"

#include <QHostAddress>
#include <QNetworkInterface>
#include <algorithm>

namespace {

QString textOf(const StringProperty& property) { return QString::fromStdString(property.getValue()); }

} // namespace

KQLocalPreferences::KQLocalPreferences(const std::shared_ptr<PublishingPropertyManager>& manager,
                                       QObject* parent)
    : QObject(parent), m_preferences(std::make_unique<LocalPreferences>(*manager)) {}

KQLocalPreferences::~KQLocalPreferences() = default;

QString KQLocalPreferences::printerIPAddress() const { return textOf(m_preferences->printerIPAddress()); }

QString KQLocalPreferences::mfgReportStoragePath() const {
    return textOf(m_preferences->mfgReportStoragePath());
}

QString KQLocalPreferences::mfgYBFilePath() const { return textOf(m_preferences->mfgYBFilePath()); }

bool KQLocalPreferences::mfgMode() const { return m_preferences->mfgMode().getValue(); }

bool KQLocalPreferences::emulateSupplies() const { return m_preferences->emulateSupplies().getValue(); }

QString KQLocalPreferences::localIPAddress() const { return firstAddress(QNetworkInterface::allAddresses()); }

void KQLocalPreferences::setPrinterIPAddress(const QString& value) {
    m_preferences->printerIPAddress().setValue(value.toStdString());
    emit printerIPAddressChanged(value);
}

void KQLocalPreferences::setMfgReportStoragePath(const QString& value) {
    m_preferences->mfgReportStoragePath().setValue(value.toStdString());
    emit mfgReportStoragePathChanged(value);
}

void KQLocalPreferences::setMfgYBFilePath(const QString& value) {
    m_preferences->mfgYBFilePath().setValue(value.toStdString());
    emit mfgYBFilePathChanged(value);
}

void KQLocalPreferences::setMfgMode(bool value) {
    m_preferences->mfgMode().setValue(value);
    emit mfgModeChanged(value);
}

void KQLocalPreferences::setEmulateSupplies(bool value) {
    m_preferences->emulateSupplies().setValue(value);
    emit emulateSuppliesChanged(value);
}

QString firstAddress(const QList<QHostAddress>& addresses) {
    const auto found = std::find_if(addresses.begin(), addresses.end(), [](const QHostAddress& address) {
        return address.protocol() == QAbstractSocket::IPv4Protocol && address != QHostAddress::LocalHost;
    });
    return found == addresses.end() ? QString() : found->toString();
}
