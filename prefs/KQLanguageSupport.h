#pragma once

#include "prefs/KQTranslator.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <memory>

class DisplayPreferences;
class QGuiApplication;

/// What QML sees of the languages: which there are, which one is current, the switch to another, and dates in
/// the current one. The choice persists as the printer's preference for the language; a change that another
/// program makes there counts from the next start. Thread: the GUI thread.
class KQLanguageSupport : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString currentLanguage READ currentLanguage NOTIFY currentLanguageChanged)
    Q_PROPERTY(QString retranslate READ retranslate NOTIFY currentLanguageChanged)
    Q_PROPERTY(uint currentLanguageIndex READ currentLanguageIndex WRITE setCurrentLanguageIndex NOTIFY
                   currentLanguageChanged)

public:
    /// Selects the language that @p preferences hold, and corrects an obsolete value there.
    /// Requires: @p application outlives the object.
    KQLanguageSupport(QGuiApplication* application, std::shared_ptr<DisplayPreferences> preferences,
                      QObject* parent = nullptr);

    [[nodiscard]] QString currentLanguage() const { return m_translator.currentLanguage(); }

    /// Returns nothing, always: a term of a binding that is to be evaluated again with the language.
    [[nodiscard]] QString retranslate() const { return {}; }

    /// Returns the index into supportedLanguages(); 255 while no language is selected.
    [[nodiscard]] uint currentLanguageIndex() const { return m_translator.currentIndex(); }

    /// Selects the language of the low 8 bits of @p index and stores the choice. Emits, changed or not.
    void setCurrentLanguageIndex(uint index);

    /// Returns the names of the languages on offer.
    Q_INVOKABLE QStringList supportedLanguages() const { return m_translator.supportedLanguages(); }

    /// Returns today's date in the current language, by a format of QLocale.
    Q_INVOKABLE QString localizedDate(const QString& format) const;

    /// Returns today's date as it is in the month @p monthIndex, 1 to 12, of this year; nothing where that
    /// month has no such day.
    Q_INVOKABLE QString localizedMonth(uchar monthIndex, const QString& format) const;

signals:
    void currentLanguageChanged();

private:
    KQTranslator m_translator;
    const std::shared_ptr<DisplayPreferences> m_preferences;
};
