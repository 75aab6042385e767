#include "prefs/KQLanguageSupport.h"

#include "prefs/DisplayPreferences.h"

#include <QDate>

#include <utility>

KQLanguageSupport::KQLanguageSupport(QGuiApplication* application,
                                     std::shared_ptr<DisplayPreferences> preferences, QObject* parent)
    : QObject(parent),
      m_translator(application, preferences->language().getValue(), nullptr),
      m_preferences(std::move(preferences)) {
    StringProperty& language = m_preferences->language();
    language.setValue(m_translator.substitute(language.getValue()));
}

void KQLanguageSupport::setCurrentLanguageIndex(uint index) {
    m_preferences->language().setValue(m_translator.setLanguage(static_cast<std::uint8_t>(index)));
    emit currentLanguageChanged();
}

QString KQLanguageSupport::localizedDate(const QString& format) const {
    return m_translator.currentLocale().toString(QDate::currentDate(), format);
}

QString KQLanguageSupport::localizedMonth(uchar monthIndex, const QString& format) const {
    const QDate today = QDate::currentDate();
    return m_translator.currentLocale().toString(QDate(today.year(), monthIndex, today.day()), format);
}
