#include "prefs/KQTranslator.h"

#include "platform/WideText.h"
#include "platform/os/DeviceRoot.h"
#include "prefs/ApplicationIdentity.h"
#include "prefs/FileHelpers.h"

#include <QFile>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>
#include <QTranslator>

#include <algorithm>
#include <memory>
#include <optional>

namespace {

constexpr const char* kBaseLanguage = "english";
constexpr const char* kLanguagesFile = "/languages.json";
constexpr QLatin1String kFileEnding(".qm", 3);

// The host's bytes, whatever they are, as Qt turns them back.
QString hostPath(const std::string& printerPath) {
    return QFile::decodeName(QByteArray::fromStdString(os::hostPath(printerPath)));
}

QJsonObject readObject(const std::string& path) {
    const std::optional<std::string> bytes = readFile(toWide(path));
    QTextStream stream(QByteArray::fromStdString(bytes.value_or("")));
    stream.setCodec("UTF-8");
    stream.setAutoDetectUnicode(true);
    return QJsonDocument::fromJson(stream.readAll().toUtf8()).object();
}

QString textIn(const QJsonValue& entry, const char* key) { return entry[QLatin1String(key)].toString(); }

// Qt reads its tables at the number it is given, also beyond their end.
template <typename Number>
Number checked(std::int32_t number, Number last) {
    return static_cast<Number>(number >= 0 && number <= last ? number : 0);
}

} // namespace

KQTranslator::KQTranslator(QGuiApplication* application, const std::string& value, QObject* parent)
    : QObject(parent),
      m_folders(ApplicationIdentity::instance().translationFolders()),
      m_application(application) {
    readLanguages(readObject(ApplicationIdentity::instance().appTranslationsFolder() + kLanguagesFile));
    selectByValue(substitute(value));
}

KQTranslator::~KQTranslator() { removeTranslators(); }

void KQTranslator::readLanguages(const QJsonObject& document) {
    const QJsonArray obsolete = document.value(QLatin1String("obsoletelanguages")).toArray();
    for (const QJsonValue& entry : obsolete)
        m_substitutions[textIn(entry, "name").toStdString()] = textIn(entry, "substitutename").toStdString();
    const QJsonArray languages = document.value(QLatin1String("languages")).toArray();
    for (const QJsonValue& entry : languages) {
        const QString name = textIn(entry, "name");
        m_languages[name] = {textIn(entry, "file"), textIn(entry, "language_code").toInt(),
                             textIn(entry, "country_code").toInt()};
        m_languageNames.append(name);
    }
}

bool KQTranslator::isSelected() const {
    return m_currentIndex != kNoLanguage && m_currentIndex < m_languages.size();
}

QString KQTranslator::currentLanguage() const {
    return isSelected() ? m_languageNames[m_currentIndex] : QString();
}

QLocale KQTranslator::currentLocale() const {
    const LanguageEntry entry = isSelected() ? m_languages.value(currentLanguage()) : LanguageEntry();
    return {checked(entry.language, QLocale::LastLanguage), checked(entry.country, QLocale::LastCountry)};
}

std::string KQTranslator::substitute(const std::string& value) const {
    const auto found = m_substitutions.find(value);
    return found != m_substitutions.end() ? found->second : value;
}

void KQTranslator::selectByValue(const std::string& value) {
    if (value == kBaseLanguage) {
        setLanguage(0);
        return;
    }
    if (value.empty())
        return;
    const QString file = QString::fromStdString(value) + kFileEnding;
    const auto found = std::find_if(m_languages.cbegin(), m_languages.cend(),
                                    [&file](const LanguageEntry& entry) { return entry.file == file; });
    if (found == m_languages.cend())
        return;
    const int index = m_languageNames.indexOf(found.key());
    if (index >= 0 && index < kNoLanguage)
        setLanguage(static_cast<std::uint8_t>(index));
}

std::string KQTranslator::setLanguage(std::uint8_t index) {
    if (index < m_languages.size() && index != m_currentIndex) {
        removeTranslators();
        m_currentIndex = index;
        installTranslators();
    }
    return m_currentValue.toStdString();
}

void KQTranslator::removeTranslators() {
    for (QTranslator* translator : qAsConst(m_installedTranslators))
        m_application->removeTranslator(translator);
    qDeleteAll(m_installedTranslators);
    m_installedTranslators.clear();
}

void KQTranslator::installTranslators() {
    for (const QString& file : takeCurrentFiles())
        install(file);
}

void KQTranslator::install(const QString& file) {
    auto translator = std::make_unique<QTranslator>();
    // Empty texts, not missing ones: Qt would look for files with shorter and longer names.
    const QString none = QStringLiteral("");
    if (translator->load(file, none, none, none) && m_application->installTranslator(translator.get()))
        m_installedTranslators.append(translator.release());
}

// Sets the value of the current language, too.
QStringList KQTranslator::takeCurrentFiles() {
    const QString file = m_languages.value(m_languageNames[m_currentIndex]).file;
    if (file.isEmpty()) {
        m_currentValue = QLatin1String(kBaseLanguage);
        return {};
    }
    m_currentValue = file.chopped(std::min(file.size(), kFileEnding.size()));
    QStringList files;
    for (const std::string& folder : m_folders) {
        const std::string path = folder + '/' + file.toStdString();
        if (fileIsReadable(path))
            files.append(hostPath(path));
    }
    return files;
}
