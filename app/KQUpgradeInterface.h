#pragma once

#include "app/UpgradeTypes.h"

#include <QObject>
#include <QString>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

class UpgradeInterface;

/// The upgrade as the screens see it, and their buttons as actions of the link.
///
/// The link's handlers store and emit on their own thread; the QML engine queues the notification for the GUI
/// thread and reads the new value there. Signals are emitted on every set, changed or not. StateExitUi is
/// final: no later display replaces it before the screens have read it.
class KQUpgradeInterface : public QObject {
    Q_OBJECT
    Q_PROPERTY(StateUpgrade upgradeState READ upgradeState NOTIFY upgradeStateChanged)
    Q_PROPERTY(InProgStatus upgradeInProg READ upgradeInProg NOTIFY upgradeInProgChanged)
    Q_PROPERTY(bool enableRepair READ enableRepair NOTIFY enableRepairChanged)
    Q_PROPERTY(QString printerVersion READ printerVersion NOTIFY printerVersionChanged)
    Q_PROPERTY(QString printerDeviceName READ printerDeviceName NOTIFY printerDeviceNameChanged)
    Q_PROPERTY(QString printerRegion READ printerRegion NOTIFY printerRegionChanged)
    Q_PROPERTY(QString packageVersion READ packageVersion NOTIFY packageVersionChanged)
    Q_PROPERTY(QString packageDeviceName READ packageDeviceName NOTIFY packageDeviceNameChanged)
    Q_PROPERTY(QString packageRegion READ packageRegion NOTIFY packageRegionChanged)
    Q_PROPERTY(unsigned int packageSize READ packageSize NOTIFY packageSizeChanged)

public:
    enum StateUpgrade {
        StateUpgradeFileFound = 0,
        StateUpgradeInProgress = 1,
        StateUpgradeCompleted = 2,
        StateUpgradeFileCorrupted = 3,
        StateUpgradeFileIncompatible = 4,
        StateUpgradeFailed = 5,
        StateSysIntegrityFailed = 6,
        StateUpgradeFileNotFound = 7,
        StateNextBootSafe = 8,
        StateIdle = 9,
        StateExitUi = 10,
        StateUpgradeCompletedNoReboot = 11,
        StateConnectACPower = 12,
    };
    Q_ENUM(StateUpgrade)

    /// The stage of a running upgrade; the screens use the values as the rows of their table.
    enum InProgStatus {
        UpgradeInitiated = 0,
        PreparingFolderTemp = 1,
        ExtractPkgTemp = 2,
        ValidatingPkg = 3,
        ValidatingCfg = 4,
        BackingupCurrent = 5,
        EndingOtherAppsAndDlls = 6,
        ExtractingPkg = 7,
        VerifyingFile = 8,
        FinalOperation = 9,
    };
    Q_ENUM(InProgStatus)

    /// Without a link: for the registration of the QML type. Such an instance takes no slot call.
    KQUpgradeInterface() = default;
    explicit KQUpgradeInterface(std::shared_ptr<UpgradeInterface> link);
    ~KQUpgradeInterface() override;

    [[nodiscard]] StateUpgrade upgradeState() const { return read(m_upgradeState); }
    [[nodiscard]] InProgStatus upgradeInProg() const { return read(m_upgradeInProg); }
    [[nodiscard]] bool enableRepair() const { return read(m_enableRepair); }
    [[nodiscard]] QString printerVersion() const { return read(m_printerVersion); }
    [[nodiscard]] QString printerDeviceName() const { return read(m_printerDeviceName); }
    [[nodiscard]] QString printerRegion() const { return read(m_printerRegion); }
    [[nodiscard]] QString packageVersion() const { return read(m_packageVersion); }
    [[nodiscard]] QString packageDeviceName() const { return read(m_packageDeviceName); }
    [[nodiscard]] QString packageRegion() const { return read(m_packageRegion); }
    [[nodiscard]] unsigned int packageSize() const { return read(m_packageSize); }

    /// What the link's handlers call. Thread: any. Do not block beyond a copy of one field.
    void takeDisplay(UpgradeDisplay display);
    void takeProgress(UpgradeProgressMsg stage);
    void takePrinterInfo(const std::string& version, const std::string& deviceName,
                         const std::string& region);
    void takePackageInfo(const std::string& version, const std::string& deviceName,
                         const std::string& region);
    void takePackageSize(std::uint32_t bytes);
    void takeRepairAvailable(bool available);

signals:
    void upgradeStateChanged();
    void upgradeInProgChanged();
    void enableRepairChanged();
    void printerVersionChanged();
    void printerDeviceNameChanged();
    void printerRegionChanged();
    void packageVersionChanged();
    void packageDeviceNameChanged();
    void packageRegionChanged();
    void packageSizeChanged();

public slots:
    void userClickedUpgrade();
    void userClickedCancel();
    void userClickedRepair();
    void rebootPrinter();
    void uiExiting();
    void userClickedOK();
    void userClickedClose();
    void userClickedOkNoReboot();

private:
    using Signal = void (KQUpgradeInterface::*)();

    template <typename Value>
    Value read(const Value& field) const {
        const std::scoped_lock guard(m_fieldLock);
        return field;
    }

    template <typename Value>
    void store(Value& field, Value value, Signal changed) {
        {
            const std::scoped_lock guard(m_fieldLock);
            field = std::move(value);
        }
        emit(this->*changed)();
    }

    void storeText(QString& field, const std::string& utf8, Signal changed) {
        store(field, QString::fromStdString(utf8), changed);
    }

    mutable std::mutex m_fieldLock;
    StateUpgrade m_upgradeState = StateIdle; // guarded by m_fieldLock, like all but the link
    InProgStatus m_upgradeInProg = UpgradeInitiated;
    bool m_enableRepair = false;
    QString m_printerVersion;
    QString m_printerDeviceName;
    QString m_printerRegion;
    QString m_packageVersion;
    QString m_packageDeviceName;
    QString m_packageRegion;
    unsigned int m_packageSize = 0;
    std::shared_ptr<UpgradeInterface> m_link;
};

/// Returns the model of @p link, wired to it, and starts the link. The model owns the link, whose handlers
/// hold the model weakly and do nothing once it is gone. Thread: the GUI thread.
std::shared_ptr<KQUpgradeInterface> createUpgradeModel(const std::shared_ptr<UpgradeInterface>& link);
