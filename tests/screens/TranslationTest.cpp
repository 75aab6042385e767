#include "tests/screens/Languages.h"

#include <QFile>
#include <QProcess>
#include <QRawFont>
#include <QTemporaryDir>
#include <QTranslator>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <vector>

namespace {

struct Text {
    QByteArray context;
    QByteArray source;
};

// What the tool finds that collects the texts for the translators.
std::vector<Text> textsOfTheScreens() {
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("texts.ts"));
    QProcess::execute(QStringLiteral(COLLECTING_TOOL),
                      {QStringLiteral("-silent"), QStringLiteral(SCREENS_FOLDER),
                       QStringLiteral(CONTROLS_FOLDER), QStringLiteral("-ts"), file});
    QFile found(file);
    EXPECT_TRUE(found.open(QIODevice::ReadOnly));
    std::vector<Text> texts;
    QByteArray context;
    QXmlStreamReader xml(&found);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("name"))
            context = xml.readElementText().toUtf8();
        else if (xml.name() == QLatin1String("source"))
            texts.push_back({context, xml.readElementText().toUtf8()});
    }
    return texts;
}

class Translation : public ::testing::TestWithParam<const char*> {
protected:
    void SetUp() override { EXPECT_TRUE(m_translator.load(stagedTranslation(GetParam()))); }

    [[nodiscard]] QString translated(const Text& text) const {
        return m_translator.translate(text.context, text.source);
    }

    const std::vector<Text> m_texts = textsOfTheScreens();
    const KQTranslator m_languages{asUpgradeUI(), GetParam(), nullptr};
    QTranslator m_translator;
};

TEST_P(Translation, IsFinishedForEveryText) {
    EXPECT_GE(m_texts.size(), 49U);
    for (const Text& text : m_texts) {
        const QString translation = translated(text);
        EXPECT_FALSE(translation.isEmpty()) << text.context.data() << ": " << text.source.data();
        EXPECT_EQ(translation.count(QLatin1String("%1")), text.source.count("%1")) << text.source.data();
        EXPECT_EQ(translation.count(QLatin1Char('\n')), text.source.count('\n')) << text.source.data();
    }
}

TEST_P(Translation, HasAllItsCharactersInTheFonts) {
    const QRawFont fonts[] = {QRawFont(QStringLiteral(":/fonts/arial.ttf"), 16),
                              QRawFont(stagedWideFont(), 16)};
    QString all = m_languages.supportedLanguages().join(QString());
    for (const Text& text : m_texts)
        all += translated(text).remove(QLatin1Char('\n'));
    for (const uint character : all.toUcs4())
        EXPECT_TRUE(std::ranges::any_of(
            fonts, [character](const QRawFont& font) { return font.supportsCharacter(character); }))
            << "U+" << std::hex << character;
}

TEST_P(Translation, IsInTheLanguageThatItsNameTells) {
    EXPECT_TRUE(m_languages.currentLocale().nativeLanguageName().contains(m_languages.currentLanguage(),
                                                                          Qt::CaseInsensitive))
        << m_languages.currentLanguage().toStdString();
}

INSTANTIATE_TEST_SUITE_P(Of, Translation,
                         ::testing::ValuesIn(std::begin(kLanguages) + 1, std::end(kLanguages)), languageOf);

TEST(TranslationList, IsWhatTheTestsRunOver) {
    int index = 0;
    for (const char* value : kLanguages) {
        const KQTranslator languages(asUpgradeUI(), value, nullptr);
        EXPECT_EQ(languages.currentIndex(), index++) << value;
        EXPECT_EQ(languages.supportedLanguages().size(), static_cast<int>(std::size(kLanguages)));
    }
}

} // namespace
