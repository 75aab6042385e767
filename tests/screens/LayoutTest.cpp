#include "app/KQApp.h"

#include "tests/screens/Languages.h"
#include "tests/screens/ScreensFixture.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QTranslator>

namespace {

// Languages that are half as long again as English: with more words, or with longer ones.
class LongLanguage final : public QTranslator {
public:
    enum class Kind { MoreWords, LongerWords };

    explicit LongLanguage(Kind kind) : m_kind(kind) { QCoreApplication::installTranslator(this); }
    ~LongLanguage() override { QCoreApplication::removeTranslator(this); }

    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char* /*context*/, const char* source, const char* /*note*/,
                                    int /*n*/) const override {
        const QString english = QString::fromUtf8(source);
        return m_kind == Kind::MoreWords ? withMoreWords(english) : withLongerWords(english);
    }

private:
    static QString withMoreWords(const QString& english) {
        QString padding;
        while (padding.size() < english.size() / 2)
            padding += QStringLiteral(" ergo");
        return english + padding;
    }
    static QString withLongerWords(const QString& english) {
        QString result;
        int letters = 0;
        for (const QChar c : english) {
            letters = c.isLetter() ? letters + 1 : 0;
            result += c;
            if (letters > 0 && letters % 2 == 0)
                result += QLatin1Char('n');
        }
        return result;
    }

    Kind m_kind;
};

struct DisplaySize {
    int width;
    int height;
};

constexpr DisplaySize kSizes[] = {{480, 272}, {800, 480}, {1024, 600}};

class Layout : public ScreensTest {
protected:
    void SetUp() override {
        load();
        const std::string longest(49, 'W');
        link->packageInfo(longest, longest, longest);
        link->printerInfo(longest, longest, longest);
    }

    // The texts, bars and buttons that stand on the screen side by side, as rectangles of the popup.
    struct Piece {
        QString what;
        QRectF place;
    };

    void collect(QQuickItem* item, std::vector<Piece>& pieces) {
        auto* frame = qobject_cast<QQuickItem*>(popup);
        if (!item->isVisible() || item->width() == 0)
            return;
        if (item->inherits("QQuickText")) {
            const QString words = item->property("text").toString();
            const double width = item->property("contentWidth").toDouble();
            EXPECT_LE(width, item->width() + 1) << words.toStdString();
            EXPECT_FALSE(item->property("truncated").toBool()) << words.toStdString();
            const QRectF place(0, 0, width, item->property("contentHeight").toDouble());
            EXPECT_LE(place.height(), item->height() + 1) << words.toStdString();
            if (!words.isEmpty())
                pieces.push_back({words, item->mapRectToItem(frame, place)});
        } else if (isControl(item)) {
            checkLabel(item);
            pieces.push_back(
                {item->objectName(), item->mapRectToItem(frame, {0, 0, item->width(), item->height()})});
            return;
        }
        for (QQuickItem* child : item->childItems())
            collect(child, pieces);
    }

    static bool isControl(const QQuickItem* item) {
        return item->objectName().endsWith(QLatin1String("Button")) ||
               item->objectName() == QLatin1String("progressBar");
    }

    static void checkLabel(const QQuickItem* button) {
        for (const QQuickItem* label : button->childItems()) {
            if (!label->inherits("QQuickText"))
                continue;
            EXPECT_LE(label->property("contentWidth").toDouble(), button->width());
            EXPECT_LE(label->property("contentHeight").toDouble(), button->height());
        }
    }

    void checkScreen(const std::string& name) {
        SCOPED_TRACE(name + ' ' + std::to_string(window->width()));
        awaitFrame();
        auto* frame = qobject_cast<QQuickItem*>(popup);
        EXPECT_TRUE(QRectF(0, 0, window->width(), window->height())
                        .contains(frame->mapRectToScene({0, 0, frame->width(), frame->height()})));
        std::vector<Piece> pieces;
        collect(frame, pieces);
        EXPECT_GE(pieces.size(), 3U) << "a header, a close button and what the screen says";
        for (const Piece& piece : pieces) {
            EXPECT_TRUE(QRectF(0, 0, frame->width(), frame->height()).contains(piece.place))
                << piece.what.toStdString() << " leaves the popup";
            for (const Piece& other : pieces)
                EXPECT_TRUE(&other == &piece || !other.place.intersects(piece.place))
                    << piece.what.toStdString() << " meets " << other.what.toStdString();
        }
    }

    void checkAllScreens() {
        for (const DisplaySize& size : kSizes) {
            resize(size.width, size.height);
            for (int display = 0; display <= 11; ++display) {
                show(static_cast<UpgradeDisplay>(display));
                if (display != static_cast<int>(UpgradeDisplay::DisplayIdle))
                    checkScreen(popup->property("state").toString().toStdString());
            }
            for (int message = 5; message <= 15; ++message) {
                stage(message);
                show(UpgradeDisplay::DisplayInProgress);
                checkScreen("stage " + std::to_string(message));
            }
            show(UpgradeDisplay::DisplayIdle);
        }
    }
};

class LanguageLayout : public Layout, public ::testing::WithParamInterface<const char*> {
protected:
    void SetUp() override {
        KQApp::registerFirstFont(QStringLiteral(":/fonts/arial.ttf"));
        EXPECT_NE(QFontDatabase::addApplicationFont(stagedWideFont()), -1);
        EXPECT_NE(languages.currentIndex(), KQTranslator::kNoLanguage);
        Layout::SetUp();
    }
    const KQTranslator languages{asUpgradeUI(), GetParam(), nullptr};
};

TEST_P(LanguageLayout, NothingIsCutOff) { checkAllScreens(); }

INSTANTIATE_TEST_SUITE_P(In, LanguageLayout, ::testing::ValuesIn(kLanguages), languageOf);

TEST_F(Layout, ButtonsAreLargeEnoughForAFinger) {
    for (const DisplaySize& size : kSizes) {
        resize(size.width, size.height);
        show(UpgradeDisplay::DisplayFileFound);
        for (const char* name : {"upgradeButton", "cancelButton"}) {
            const auto* button = find<QQuickItem>(name, screen("upgradeFileFound"));
            EXPECT_GE(button->height(), size.width > 480 ? 52 : 34) << name;
            EXPECT_EQ(button->width(), size.width > 480 ? 150 : 86) << name;
        }
        EXPECT_GE(find<QQuickItem>("closeButton")->width(), 34);
    }
}

TEST_F(Layout, LineBreaksInAVersionPushNothingOffThePopup) {
    link->packageInfo("1.5\n\n\n\n\n\n\r\n\t\n\n\xE2\x80\xA8\xE2\x80\xA8\n\n\n\n\n\n\n\n\n\n\n\nx", "", "");
    checkAllScreens();
    EXPECT_EQ(text("upgradeCompleted", "bodyText"),
              QStringLiteral("Upgrade to Version 1.5 x is successful!"));
}

class LongLayout : public Layout {
protected:
    void useLanguage(LongLanguage::Kind kind) {
        language = std::make_unique<LongLanguage>(kind);
        engine.retranslate();
    }
    std::unique_ptr<LongLanguage> language;
};

TEST_F(LongLayout, NothingIsCutOffWithHalfAsManyWordsAgain) {
    useLanguage(LongLanguage::Kind::MoreWords);
    checkAllScreens();
}

TEST_F(LongLayout, NothingIsCutOffWithWordsHalfAsLongAgain) {
    useLanguage(LongLanguage::Kind::LongerWords);
    checkAllScreens();
}

} // namespace
