#include "tests/process/ProcessTest.h"
#include "tests/process/ScriptedPropertyServer.h"

#include "app/UpgradeMessage.h"
#include "property/PropertyFile.h"

#include <cstdlib>
#include <functional>
#include <map>
#include <random>

namespace {

using Clock = std::chrono::steady_clock;
namespace properties = vocabulary::properties;

// How long the test lasts: SOAK_SECONDS, or a few seconds.
std::chrono::seconds duration() {
    const char* const seconds = std::getenv("SOAK_SECONDS"); // NOLINT(concurrency-mt-unsafe): no other thread
    return std::chrono::seconds(seconds == nullptr ? 5 : std::atoi(seconds));
}

KnownProperties storedProperties() {
    return {{vocabulary::groups::kDisplayPreferences, properties::kStoredJobsUIView, {}},
            {vocabulary::groups::kDisplayPreferences, properties::kLanguage, {}},
            {vocabulary::groups::kLocallyStoredPreferences, properties::kYBFileLocation, {}},
            {vocabulary::groups::kLocallyStoredPreferences, properties::kManufacturingReportLocation, {}}};
}

/// The application lives again and again under random sets, gets, codes, damaged and missing files, and ends
/// by a code, a request to close or a kill. The fixture remembers the last value of each stored property.
class Soak : public ProcessTest {
protected:
    Soak() {
        ::setenv("ASAN_OPTIONS", "quarantine_size_mb=1", 1); // NOLINT(concurrency-mt-unsafe): no other thread
        place("boot/systemfeatures.json", R"({"features": ["Battery"]})");
        std::filesystem::create_directory(printer() / "store");
    }

    std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(m_random()) % limit; }

    void start() {
        startUpgrader();
        m_application = startApplication();
        server.accept();
        for (const char* value : {"203", "True"}) {
            const bool isPower = std::string_view(value) == "True";
            EXPECT_NE(server.hearsFrameWith("PropertySubscribeRequests"), "");
            server.saysOfFirmware(
                isPower ? KnownProperty{vocabulary::groups::kBattery, properties::kBatteryACConnected, value}
                        : KnownProperty{vocabulary::groups::kGeneral, properties::kDotsPerInch, value});
        }
        acknowledge();
        const std::string all = server.hearsAll();
        for (const KnownProperty& known : m_stored)
            EXPECT_TRUE(known.value.empty() || all.find(reportsOn({known}).front()) != std::string::npos)
                << known.line() << all;
    }

    void acknowledge() {
        upgrader->confirmStart();
        EXPECT_TRUE(acknowledges());
    }

    void set() {
        KnownProperty& known = m_stored[below(static_cast<std::uint32_t>(m_stored.size()))];
        known.value = std::to_string(++m_values);
        server.sets({known});
    }

    void expectAllInFile() {
        EXPECT_TRUE(eventually([this] {
            const std::string file = contents("store/AppPreferences.ini");
            return hasGoodFileCheck(file) &&
                   std::ranges::all_of(m_stored, [&file](const KnownProperty& known) {
                       return file.find(known.line()) != std::string::npos;
                   });
        })) << contents("store/AppPreferences.ini");
    }

    // Gives each property a new value and waits until all are in the file.
    void settle() {
        for (KnownProperty& known : m_stored)
            known.value = std::to_string(++m_values);
        server.sets(m_stored);
        expectAllInFile();
    }

    // Damages a file while the application runs, sets one property and expects that no other value is lost.
    void damage() {
        settle();
        const std::filesystem::path store = printer() / "store";
        const std::filesystem::path file = store / "AppPreferences.ini";
        const std::filesystem::path backup = store / "AppPreferences.ini.bak";
        switch (below(6)) {
        case 0:
            std::filesystem::resize_file(file, below(100));
            break;
        case 1:
            std::filesystem::remove(file);
            break;
        case 2:
            place("store/AppPreferences.ini", "no property file");
            break;
        case 3:
            std::filesystem::remove_all(backup);
            break;
        case 4:
            std::filesystem::remove_all(backup);
            std::filesystem::create_directory(backup);
            break;
        default:
            std::filesystem::rename(store, printer() / "away");
            set();
            server.sync();
            std::filesystem::rename(printer() / "away", store);
        }
        set();
        expectAllInFile();
        if (std::filesystem::is_directory(backup))
            std::filesystem::remove(backup);
    }

    void sendCodes() {
        std::vector<std::uint8_t> codes(1 + below(30));
        for (std::uint8_t& code : codes) {
            code = static_cast<std::uint8_t>(below(256));
            if (code == MsgExitUi || code == MsgRequestClose)
                code = MsgFailed;
        }
        EXPECT_TRUE(upgrader->send(codes, kDeadline));
    }

    void step() {
        switch (below(8)) {
        case 0:
            damage();
            break;
        case 1:
            sendCodes();
            break;
        case 2:
            acknowledge();
            break;
        case 3:
            EXPECT_NE(server.hearsAll(), "");
            break;
        case 4:
            server.saysOfFirmware({vocabulary::groups::kBattery, properties::kBatteryACConnected,
                                   below(2) == 0 ? "True" : "False"});
            break;
        default:
            for (std::uint32_t i = below(50); i-- != 0;)
                set();
        }
        server.sync();
    }

    // Sends bytes that are no message. The application closes the connection and goes on without it.
    void breakConnection() {
        static const char* const kTexts[] = {"no message", "", R"({"PropertySetRequests": [)", "[[[[",
                                             "\xFF\xFE"};
        server.says(kTexts[below(std::size(kTexts))]);
        server.hangUp();
        sendCodes();
        acknowledge();
    }

    void end() {
        enum Way : std::uint8_t { Kill, BrokenConnection, Code, Request, Ways };
        const auto way = static_cast<Way>(below(Ways));
        if (way == Kill) {
            settle(); // a kill may cost what is not yet in the file
            m_application->kill();
        } else {
            if (way == BrokenConnection)
                breakConnection();
            if (way == Code) {
                EXPECT_TRUE(upgrader->send(MsgExitUi, kDeadline));
            } else {
                upgrader->requestClose();
            }
            EXPECT_EQ(m_application->exitStatus(kDeadline), 0);
        }
        server.hangUp();
        const std::string text = output("UpgradeUI");
        EXPECT_EQ(text.find("Sanitizer"), std::string::npos) << text;
        EXPECT_EQ(text.find("runtime error"), std::string::npos) << text;
    }

    // After some seconds a life takes no more memory.
    void live(std::chrono::seconds life) {
        start();
        const auto begin = Clock::now();
        std::size_t early = 0;
        while (Clock::now() < begin + life && !HasFailure()) {
            step();
            if (early == 0 && Clock::now() > begin + kWarmUp)
                early = m_application->residentBytes();
        }
        if (early != 0) {
            EXPECT_LT(m_application->residentBytes(), early + kMaxGrowth);
        }
        end();
    }

    static constexpr std::chrono::seconds kWarmUp{5};
    static constexpr std::size_t kMaxGrowth = 16U << 20;

    ScriptedPropertyServer server{printer()};

private:
    std::mt19937 m_random{4711}; // NOLINT(cert-msc51-cpp): the same steps each time
    std::unique_ptr<ChildProcess> m_application;
    KnownProperties m_stored = storedProperties(); // with the last value of each, empty before the first
    unsigned m_values = 0;
};

TEST_F(Soak, NothingStoredIsLostAndNothingEndsTheApplication) {
    const auto end = Clock::now() + duration();
    live(duration() / 2);
    while (Clock::now() < end && !HasFailure())
        live(std::chrono::seconds(1));
}

} // namespace
