#include "platform/ThreadFactory.h"
#include "prefs/ApplicationIdentity.h"
#include "prefs/DisplayPreferences.h"
#include "prefs/KQLanguageSupport.h"
#include "property/PublishingPropertyManager.h"

#include "tests/support/DeviceRootTest.h"

#include <QCoreApplication>
#include <QDate>
#include <QEvent>
#include <QGuiApplication>
#include <QSignalSpy>

#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t kPriority = 251;
constexpr std::uint8_t kNone = KQTranslator::kNoLanguage;

constexpr const char* kLanguages = R"({
    "languages": [
        { "name": "English", "file": "", "language_code": "31", "country_code": "225" },
        { "name": "Français", "file": "francais.qm", "language_code": "37", "country_code": "74" },
        { "name": "Wrong", "file": "wrong.qm", "language_code": "999999", "country_code": "many" },
        { "name": "Deutsch", "file": "deutsch.qm", "language_code": "42", "country_code": "82" }
    ],
    "obsoletelanguages": [
        { "name": "german", "substitutename": "deutsch" },
        { "name": "klingon", "substitutename": "vulcan" }
    ]
})";

// Counts what an application hears of each translator that is installed or removed.
class LanguageChanges final : public QObject {
public:
    LanguageChanges() { qApp->installEventFilter(this); }
    int count = 0;

    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        count += event->type() == QEvent::LanguageChange ? 1 : 0;
        return false;
    }
};

class Languages : public DeviceRootTest {
protected:
    Languages() {
        ApplicationIdentity::instance().setApplicationName(m_own.filename().string());
        fs::create_directories(m_own);
        tell(kLanguages);
    }
    ~Languages() override {
        std::error_code ignored; // what stays behind is no failure of the test
        fs::remove_all(m_own, ignored);
    }

    void tell(std::string_view json) const { std::ofstream(m_own / "languages.json") << json; }

    /// Starts the languages with what the printer's preference holds.
    KQLanguageSupport& start(std::string_view value) {
        m_preferences->language().setValue(value);
        m_support.reset();
        m_support = std::make_unique<KQLanguageSupport>(qGuiApp, m_preferences);
        return *m_support;
    }
    [[nodiscard]] std::string stored() const { return m_preferences->language().getValue(); }
    void store(std::string_view value) { m_preferences->language().setValue(value); }

    static std::string translated(const char* text) {
        return QCoreApplication::translate("LanguageTest", text).toStdString();
    }
    static void place(const char* compiled, const fs::path& folder) {
        fs::create_directories(folder);
        fs::copy_file(fs::path(TRANSLATIONS_FOLDER) / compiled, folder / "deutsch.qm");
    }

    const fs::path m_own = fs::canonical("/proc/self/exe").parent_path() / "translations" /
                           ("LanguageTest" + std::to_string(::getpid()));

private:
    std::shared_ptr<DisplayPreferences> m_preferences = std::make_shared<DisplayPreferences>(
        std::make_shared<PublishingPropertyManager>(std::make_shared<ThreadFactory>(kPriority), kPriority,
                                                    kPriority, L"/store/AppPreferences.ini", L""));
    std::unique_ptr<KQLanguageSupport> m_support;
};

TEST_F(Languages, AreChosenByThePreference) {
    struct Row {
        const char* sentence;
        const char* preference;
        uint index;
        const char* name;
        const char* storedAfterwards;
    };
    constexpr Row kRows[] = {
        {"english is the first", "english", 0, "English", "english"},
        {"the name of a file without its ending", "deutsch", 3, "Deutsch", "deutsch"},
        {"an obsolete value is substituted for good", "german", 3, "Deutsch", "deutsch"},
        {"a substitute may be unknown", "klingon", kNone, "", "vulcan"},
        {"an unknown value stays", "latin", kNone, "", "latin"},
        {"no value", "", kNone, "", ""},
        {"the name that is shown is none", "Deutsch", kNone, "", "Deutsch"},
        {"the whole name of a file is none", "deutsch.qm", kNone, "", "deutsch.qm"},
    };
    for (const Row& row : kRows) {
        const KQLanguageSupport& languages = start(row.preference);
        EXPECT_EQ(languages.currentLanguageIndex(), row.index) << row.sentence;
        EXPECT_EQ(languages.currentLanguage(), QString::fromUtf8(row.name)) << row.sentence;
        EXPECT_EQ(stored(), row.storedAfterwards) << row.sentence;
        EXPECT_EQ(languages.supportedLanguages().size(), 4) << row.sentence;
        EXPECT_EQ(languages.property("retranslate").toString(), QString());
    }
}

TEST_F(Languages, AreNoneWhereTheirFileIsNoGood) {
    const std::string whole = kLanguages;
    for (const std::string& text :
         {std::string(), std::string("[]"), whole.substr(0, whole.size() / 2), std::string("{}"),
          std::string(R"({"languages": {"name": "English"}})"), std::string(R"({"languages": []})")}) {
        tell(text);
        KQLanguageSupport& languages = start("english");
        EXPECT_TRUE(languages.supportedLanguages().isEmpty()) << text;
        EXPECT_EQ(languages.currentLanguageIndex(), kNone) << text;
        languages.setCurrentLanguageIndex(0);
        EXPECT_EQ(stored(), "") << text;
    }
    fs::remove_all(m_own);
    EXPECT_TRUE(start("english").supportedLanguages().isEmpty());
    EXPECT_EQ(stored(), "english");
    fs::create_directories(m_own);
    ASSERT_EQ(::mkfifo((m_own / "languages.json").c_str(), 0600), 0);
    EXPECT_TRUE(start("english").supportedLanguages().isEmpty());
}

TEST_F(Languages, SubstituteWhereNoneIsOnOffer) {
    tell(R"({"obsoletelanguages": [{"name": "german", "substitutename": "deutsch"}]})");
    EXPECT_EQ(start("german").currentLanguageIndex(), kNone);
    EXPECT_EQ(stored(), "deutsch");
}

TEST_F(Languages, ReadAFileWithAByteOrderMark) {
    tell("\xEF\xBB\xBF" + std::string(kLanguages));
    EXPECT_EQ(start("francais").currentLanguage(), QStringLiteral("Français"));
}

TEST_F(Languages, ReplaceAnEarlierOneOfTheirName) {
    tell(R"({"languages": [{"name": "English", "file": ""}, {"name": "Deutsch", "file": "old.qm"},
                           {"name": "Deutsch", "file": "deutsch.qm"}]})");
    EXPECT_EQ(start("old").currentLanguageIndex(), kNone);
    KQLanguageSupport& languages = start("deutsch");
    EXPECT_EQ(languages.supportedLanguages().join(QLatin1Char(' ')),
              QStringLiteral("English Deutsch Deutsch"));
    EXPECT_EQ(languages.currentLanguageIndex(), 1U);
    languages.setCurrentLanguageIndex(2);
    EXPECT_EQ(languages.currentLanguageIndex(), 1U) << "there are two languages";
}

TEST_F(Languages, StoreAndTellEveryChoice) {
    place("early.qm", m_own);
    struct Row {
        const char* sentence;
        const char* preference;
        uint index;
        uint indexAfterwards;
        const char* storedAfterwards;
        int changesOfTranslators;
    };
    constexpr Row kRows[] = {
        {"another", "english", 3, 3, "deutsch", 1},
        {"back to the first", "deutsch", 0, 0, "english", 1},
        {"the current one", "deutsch", 3, 3, "deutsch", 0},
        {"beyond the last", "deutsch", 4, 3, "deutsch", 0},
        {"255 is none", "deutsch", 255, 3, "deutsch", 0},
        {"256 is 0", "deutsch", 256, 0, "english", 1},
        {"a file that is not there", "english", 1, 1, "francais", 0},
        {"beyond the last, with none selected", "latin", 4, kNone, "", 0},
    };
    for (const Row& row : kRows) {
        KQLanguageSupport& languages = start(row.preference);
        store("another program's choice");
        const LanguageChanges translators;
        QSignalSpy told(&languages, &KQLanguageSupport::currentLanguageChanged);
        languages.setProperty("currentLanguageIndex", row.index);
        EXPECT_EQ(languages.currentLanguageIndex(), row.indexAfterwards) << row.sentence;
        EXPECT_EQ(stored(), row.storedAfterwards) << row.sentence;
        EXPECT_EQ(told.count(), 1) << row.sentence;
        EXPECT_EQ(translators.count, row.changesOfTranslators) << row.sentence;
    }
}

TEST_F(Languages, AreTheSumOfTheirFilesTheLastBeforeTheFirst) {
    place("early.qm", m_own);
    const fs::path notCompiled = root() / "hard disk/KeltoPrinterApps/Other/translations";
    fs::create_directories(notCompiled);
    std::ofstream(notCompiled / "deutsch.qm") << "no translation";
    const fs::path fifo = root() / "hard disk/KeltoPrinterApps/Another/translations";
    fs::create_directories(fifo);
    ASSERT_EQ(::mkfifo((fifo / "deutsch.qm").c_str(), 0600), 0);
    place("late.qm", root() / "boot/translations/ErrorDetectors");

    KQLanguageSupport& languages = start("deutsch");
    EXPECT_EQ(translated("in both"), "late");
    EXPECT_EQ(translated("in early alone"), "early alone");
    EXPECT_EQ(translated("in late alone"), "late alone");
    languages.setCurrentLanguageIndex(0);
    EXPECT_EQ(translated("in both"), "in both");
}

TEST_F(Languages, LeaveNoTranslatorBehind) {
    place("early.qm", m_own);
    {
        const KQTranslator translator(qGuiApp, "deutsch", nullptr);
        EXPECT_EQ(translated("in both"), "early");
    }
    EXPECT_EQ(translated("in both"), "in both");
}

TEST_F(Languages, WriteDatesAsTheyDo) {
    const QString format = QStringLiteral("dddd d MMMM yyyy");
    struct Row {
        const char* preference;
        QLocale locale;
    };
    const Row rows[] = {{"deutsch", QLocale(QLocale::German, QLocale::Germany)},
                        {"latin", QLocale(QLocale::Language(0), QLocale::Country(0))},
                        {"wrong", QLocale(QLocale::Language(0), QLocale::Country(0))}};
    for (const Row& row : rows) {
        const KQLanguageSupport& languages = start(row.preference);
        const QDate today = QDate::currentDate();
        EXPECT_EQ(languages.localizedDate(format), row.locale.toString(today, format)) << row.preference;
        for (uchar month = 0; month <= 13; ++month) {
            const QDate date(today.year(), month, today.day());
            EXPECT_EQ(languages.localizedMonth(month, format),
                      date.isValid() ? row.locale.toString(date, format) : QString())
                << row.preference << ' ' << int{month};
        }
    }
}

} // namespace
