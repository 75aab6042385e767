#pragma once

#include "prefs/LanguageEntry.h"

#include <QHash>
#include <QList>
#include <QLocale>
#include <QObject>
#include <QStringList>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

class QGuiApplication;
class QJsonObject;
class QTranslator;

/// The languages of the printer, as languages.json in the application's folder of translations tells them,
/// and the translators of the current one.
///
/// A language is the sum of its files in all translation folders; a text that stands in two of them comes
/// from the later folder. Nothing here reports an error: what is missing or malformed leaves the texts in
/// English. A language is known by its value, the name of its file without ".qm", or "english". Thread: the
/// GUI thread.
class KQTranslator : public QObject {
    Q_OBJECT

public:
    /// What currentIndex() is while no language has been selected.
    static constexpr std::uint8_t kNoLanguage = 255;

    /// Reads the languages and selects that of @p value or of its substitute. Requires: @p application
    /// outlives the object.
    KQTranslator(QGuiApplication* application, const std::string& value, QObject* parent);
    ~KQTranslator() override;

    /// Returns the names of the languages in the order of the file. A name may stand there twice.
    [[nodiscard]] QStringList supportedLanguages() const { return m_languageNames; }

    /// Returns the name of the current language; empty while none is selected.
    [[nodiscard]] QString currentLanguage() const;

    [[nodiscard]] std::uint8_t currentIndex() const { return m_currentIndex; }

    /// Returns the locale of the current language, and the one made from 0 and 0 while none is selected.
    [[nodiscard]] QLocale currentLocale() const;

    /// Returns what takes the place of @p value if it is obsolete, otherwise @p value itself.
    [[nodiscard]] std::string substitute(const std::string& value) const;

    /// Selects the language of @p value. An unknown value changes nothing.
    void selectByValue(const std::string& value);

    /// Selects a language and installs its translators, unless @p index is the current one or beyond the
    /// languages. Returns the value of the language that is current then; empty while none is selected.
    std::string setLanguage(std::uint8_t index);

private:
    [[nodiscard]] bool isSelected() const;
    void readLanguages(const QJsonObject& document);
    void removeTranslators();
    void installTranslators();
    void install(const QString& file);
    [[nodiscard]] QStringList takeCurrentFiles();

    QHash<QString, LanguageEntry> m_languages;
    std::map<std::string, std::string> m_substitutions;
    QStringList m_languageNames;
    const std::vector<std::string> m_folders;
    QList<QTranslator*> m_installedTranslators;
    std::uint8_t m_currentIndex = kNoLanguage;
    QString m_currentValue;
    QGuiApplication* const m_application;
};
