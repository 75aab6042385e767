#include "prefs/KQDisplayPreferences.h"

#include "platform/os/Screen.h"
#include "prefs/DisplayPreferences.h"

#include <QGuiApplication>
#include <QScreen>
#include <QSize>
#include <utility>

namespace {

constexpr QSize kSizeOffThePrinter(1024, 600);

QSize measuredScreen() {
    if (!os::screenIsToBeMeasured())
        return kSizeOffThePrinter;
    const QRect geometry = QGuiApplication::screens().constFirst()->geometry();
    return {geometry.right() - geometry.left() + 1, geometry.bottom() - geometry.top() + 1};
}

/// Signals every change of @p property by @p signal while the face lives, and its present value at once.
template <typename T, typename Signal, typename Read>
void wire(const std::shared_ptr<KQDisplayPreferences>& face, T& property, Signal signal, Read read) {
    property.addListener([weak = std::weak_ptr(face), signal, read](const std::shared_ptr<Property>&) {
        if (const std::shared_ptr<KQDisplayPreferences> alive = weak.lock())
            emit(alive.get()->*signal)((alive.get()->*read)());
    });
    emit(face.get()->*signal)((face.get()->*read)());
}

} // namespace

KQDisplayPreferences::KQDisplayPreferences(std::shared_ptr<DisplayPreferences> preferences)
    : m_preferences(std::move(preferences)) {
    const QSize size = measuredScreen();
    if (m_preferences)
        m_preferences->setScreenResolution(static_cast<uint>(size.width()), static_cast<uint>(size.height()));
}

KQDisplayPreferences::~KQDisplayPreferences() = default;

bool KQDisplayPreferences::showFullPartName() const {
    return m_preferences && m_preferences->showFullPartName().getValue();
}

uint KQDisplayPreferences::screenResolutionWidth() const {
    return m_preferences ? m_preferences->screenResolutionWidth()->getValue() : 0;
}

uint KQDisplayPreferences::screenResolutionHeight() const {
    return m_preferences ? m_preferences->screenResolutionHeight()->getValue() : 0;
}

QString KQDisplayPreferences::printerStatusDisplay() const {
    return m_preferences ? QString::fromStdString(m_preferences->printerStatusDisplay().getValue())
                         : QStringLiteral(" ");
}

uint KQDisplayPreferences::storedJobsUIView() const {
    return m_preferences ? m_preferences->storedJobsUIView().getValue() : 0;
}

uint KQDisplayPreferences::measurementUnit() const {
    return m_preferences ? m_preferences->measurementUnit().getValue() : 0;
}

uint KQDisplayPreferences::dotsPerInch() const {
    return m_preferences ? m_preferences->dotsPerInch()->getValue() : 0;
}

bool KQDisplayPreferences::hourFormat24() const {
    return m_preferences && m_preferences->hourFormat24().getValue();
}

bool KQDisplayPreferences::secretDevelopmentSettings() const {
    return m_preferences && m_preferences->secretDevelopmentSettings().getValue();
}

bool KQDisplayPreferences::invertScreen() const {
    return m_preferences && m_preferences->invertScreen().getValue();
}

void KQDisplayPreferences::setShowFullPartName(bool value) {
    if (!m_preferences)
        return;
    m_preferences->showFullPartName().setValue(value);
    emit showFullPartNameChanged(value);
}

void KQDisplayPreferences::setScreenResolutionWidth(uint value) {
    if (!m_preferences)
        return;
    m_preferences->screenResolutionWidth()->setValue(value);
    emit screenResolutionWidthChanged(value);
}

void KQDisplayPreferences::setScreenResolutionHeight(uint value) {
    if (!m_preferences)
        return;
    m_preferences->screenResolutionHeight()->setValue(value);
    emit screenResolutionHeightChanged(value);
}

void KQDisplayPreferences::setPrinterStatusDisplay(const QString& value) {
    if (!m_preferences)
        return;
    m_preferences->printerStatusDisplay().setValue(value.toStdString());
    emit printerStatusDisplayChanged(value);
}

void KQDisplayPreferences::setStoredJobsUIView(uint value) {
    if (!m_preferences)
        return;
    m_preferences->storedJobsUIView().setValue(value);
    emit storedJobsUIViewChanged(value);
}

void KQDisplayPreferences::setMeasurementUnit(uint value) {
    if (!m_preferences)
        return;
    m_preferences->measurementUnit().setValue(value);
    emit measurementUnitChanged(value);
}

void KQDisplayPreferences::setDotsPerInch(uint value) {
    if (!m_preferences)
        return;
    m_preferences->dotsPerInch()->setValue(value);
    emit dotsPerInchChanged(value);
}

void KQDisplayPreferences::setHourFormat24(bool value) {
    if (!m_preferences)
        return;
    m_preferences->hourFormat24().setValue(value);
    emit hourFormat24Changed(value);
}

void KQDisplayPreferences::setSecretDevelopmentSettings(bool value) {
    if (!m_preferences)
        return;
    m_preferences->secretDevelopmentSettings().setValue(value);
    emit secretDevelopmentSettingsChanged(value);
}

void KQDisplayPreferences::setInvertScreen(bool value) {
    if (!m_preferences)
        return;
    m_preferences->invertScreen().setValue(value);
    emit invertScreenChanged(value);
}

std::shared_ptr<KQDisplayPreferences>
createKQDisplayPreferences(const std::shared_ptr<DisplayPreferences>& preferences) {
    using Face = KQDisplayPreferences;
    auto face = std::make_shared<Face>(preferences);
    if (!preferences)
        return face;
    wire(face, *preferences->screenResolutionHeight(), &Face::screenResolutionHeightChanged,
         &Face::screenResolutionHeight);
    wire(face, *preferences->screenResolutionWidth(), &Face::screenResolutionWidthChanged,
         &Face::screenResolutionWidth);
    wire(face, preferences->printerStatusDisplay(), &Face::printerStatusDisplayChanged,
         &Face::printerStatusDisplay);
    wire(face, preferences->hourFormat24(), &Face::hourFormat24Changed, &Face::hourFormat24);
    wire(face, preferences->secretDevelopmentSettings(), &Face::secretDevelopmentSettingsChanged,
         &Face::secretDevelopmentSettings);
    return face;
}
