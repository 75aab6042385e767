#pragma once

#include <QObject>
#include <QString>
#include <memory>

class LocalPreferences;
class PublishingPropertyManager;
class QHostAddress;

/// The face of the local preferences: a getter reads, a setter sets and signals. Thread: the first.
class KQLocalPreferences : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString printerIPAddress READ printerIPAddress WRITE setPrinterIPAddress NOTIFY
                   printerIPAddressChanged)
    Q_PROPERTY(QString mfgReportStoragePath READ mfgReportStoragePath WRITE setMfgReportStoragePath NOTIFY
                   mfgReportStoragePathChanged)
    Q_PROPERTY(QString mfgYBFilePath READ mfgYBFilePath WRITE setMfgYBFilePath NOTIFY mfgYBFilePathChanged)
    Q_PROPERTY(bool mfgMode READ mfgMode WRITE setMfgMode NOTIFY mfgModeChanged)
    Q_PROPERTY(
        bool emulateSupplies READ emulateSupplies WRITE setEmulateSupplies NOTIFY emulateSuppliesChanged)
    Q_PROPERTY(QString localIPAddress READ localIPAddress)

public:
    explicit KQLocalPreferences(const std::shared_ptr<PublishingPropertyManager>& manager,
                                QObject* parent = nullptr);
    ~KQLocalPreferences() override;

    [[nodiscard]] QString printerIPAddress() const;
    [[nodiscard]] QString mfgReportStoragePath() const;
    [[nodiscard]] QString mfgYBFilePath() const;
    [[nodiscard]] bool mfgMode() const;
    [[nodiscard]] bool emulateSupplies() const;

    /// Returns the first IPv4 address of this host but 127.0.0.1, or an empty text. Looks anew at each call.
    [[nodiscard]] QString localIPAddress() const;

    void setPrinterIPAddress(const QString& value);
    void setMfgReportStoragePath(const QString& value);
    void setMfgYBFilePath(const QString& value);
    void setMfgMode(bool value);
    void setEmulateSupplies(bool value);

signals:
    void printerIPAddressChanged(const QString& value);
    void mfgReportStoragePathChanged(const QString& value);
    void mfgYBFilePathChanged(const QString& value);
    void mfgModeChanged(bool value);
    void emulateSuppliesChanged(bool value);

private:
    const std::unique_ptr<LocalPreferences> m_preferences;
};

/// The rule behind KQLocalPreferences::localIPAddress(): the first that counts of @p addresses.
[[nodiscard]] QString firstAddress(const QList<QHostAddress>& addresses);
