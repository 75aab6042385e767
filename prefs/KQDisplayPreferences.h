#pragma once

#include <QObject>
#include <QString>
#include <memory>

class DisplayPreferences;

/// The face that the preferences of the display show to QML.
///
/// A setter sets and signals. The height and width of the screen, the status, the clock format and the
/// development settings signal on their own, too, when they change from wherever, on the thread that changed
/// them; so a change of one of these by its setter is signalled twice. Without preferences everything reads
/// as false, 0 or one blank. Thread: the first.
class KQDisplayPreferences : public QObject {
    Q_OBJECT
    Q_PROPERTY(
        bool showFullPartName READ showFullPartName WRITE setShowFullPartName NOTIFY showFullPartNameChanged)
    Q_PROPERTY(uint screenResolutionWidth READ screenResolutionWidth WRITE setScreenResolutionWidth NOTIFY
                   screenResolutionWidthChanged)
    Q_PROPERTY(uint screenResolutionHeight READ screenResolutionHeight WRITE setScreenResolutionHeight NOTIFY
                   screenResolutionHeightChanged)
    Q_PROPERTY(QString printerStatusDisplay READ printerStatusDisplay WRITE setPrinterStatusDisplay NOTIFY
                   printerStatusDisplayChanged)
    Q_PROPERTY(
        uint storedJobsUIView READ storedJobsUIView WRITE setStoredJobsUIView NOTIFY storedJobsUIViewChanged)
    Q_PROPERTY(
        uint measurementUnit READ measurementUnit WRITE setMeasurementUnit NOTIFY measurementUnitChanged)
    Q_PROPERTY(uint dotsPerInch READ dotsPerInch WRITE setDotsPerInch NOTIFY dotsPerInchChanged)
    Q_PROPERTY(bool hourFormat24 READ hourFormat24 WRITE setHourFormat24 NOTIFY hourFormat24Changed)
    Q_PROPERTY(bool secretDevelopmentSettings READ secretDevelopmentSettings WRITE
                   setSecretDevelopmentSettings NOTIFY secretDevelopmentSettingsChanged)
    Q_PROPERTY(bool invertScreen READ invertScreen WRITE setInvertScreen NOTIFY invertScreenChanged)
    Q_PROPERTY(bool readyToUpdateDisplay READ readyToUpdateDisplay NOTIFY readyToUpdateDisplayChanged)

public:
    /// Measures the screen and enters its size in @p preferences, which may be empty.
    explicit KQDisplayPreferences(std::shared_ptr<DisplayPreferences> preferences);
    ~KQDisplayPreferences() override;

    [[nodiscard]] bool showFullPartName() const;
    [[nodiscard]] uint screenResolutionWidth() const;
    [[nodiscard]] uint screenResolutionHeight() const;
    [[nodiscard]] QString printerStatusDisplay() const;
    [[nodiscard]] uint storedJobsUIView() const;
    [[nodiscard]] uint measurementUnit() const;
    [[nodiscard]] uint dotsPerInch() const;
    [[nodiscard]] bool hourFormat24() const;
    [[nodiscard]] bool secretDevelopmentSettings() const;
    [[nodiscard]] bool invertScreen() const;
    [[nodiscard]] bool readyToUpdateDisplay() const { return m_readyToUpdateDisplay; }

    void setShowFullPartName(bool value);
    void setScreenResolutionWidth(uint value);
    void setScreenResolutionHeight(uint value);
    void setPrinterStatusDisplay(const QString& value);
    void setStoredJobsUIView(uint value);
    void setMeasurementUnit(uint value);
    void setDotsPerInch(uint value);
    void setHourFormat24(bool value);
    void setSecretDevelopmentSettings(bool value);
    void setInvertScreen(bool value);

signals:
    void showFullPartNameChanged(bool value);
    void screenResolutionWidthChanged(uint value);
    void screenResolutionHeightChanged(uint value);
    void printerStatusDisplayChanged(const QString& value);
    void storedJobsUIViewChanged(uint value);
    void measurementUnitChanged(uint value);
    void dotsPerInchChanged(uint value);
    void hourFormat24Changed(bool value);
    void secretDevelopmentSettingsChanged(bool value);
    void invertScreenChanged(bool value);
    void readyToUpdateDisplayChanged();

private:
    const std::shared_ptr<DisplayPreferences> m_preferences;
    const bool m_readyToUpdateDisplay = false;
};

/// Returns a new face of @p preferences that signals changes from elsewhere, too. Each of these signals has
/// come once, with the present value, when it returns. Thread: the first.
std::shared_ptr<KQDisplayPreferences>
createKQDisplayPreferences(const std::shared_ptr<DisplayPreferences>& preferences);
