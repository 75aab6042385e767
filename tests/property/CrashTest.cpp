#include "property/PropertyFile.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/DeviceRootTest.h"

#include <fstream>
#include <map>
#include <random>
#include <set>
#include <thread>

namespace {

#if defined(__SANITIZE_THREAD__)
constexpr int kRuns = 150; // that sanitizer makes a start ten times slower
#else
constexpr int kRuns = 1000;
#endif
constexpr int kStepsOfTwoRewrites = 50; // and of the load before them

/// A program that changes properties is killed again and again: at every step of its file work, and at any
/// moment.
class Crash : public DeviceRootTest {
protected:
    Crash() {
        std::filesystem::create_directory(root() / "store");
        std::filesystem::create_directory(root() / "boot");
    }

    std::unique_ptr<ChildProcess> startWriter(int run, int step) {
        const std::vector<std::string> arguments{CRASH_WRITER, root().string(), std::to_string(1 + run * 100),
                                                 std::to_string(1 + run / 25), std::to_string(step)};
        std::filesystem::remove(root() / "told");
        return std::make_unique<ChildProcess>(arguments, root() / "told");
    }

    // A value from outside for the first property, between those of this run and of the one before.
    void writeOverride(unsigned value) {
        std::ofstream file(root() / "boot/AppPreferencesOverride.ini", std::ios::binary);
        file << withFileCheck("G:P0|g:n=" + std::to_string(value) + '\n');
        m_set[0].insert(value);
    }

    [[nodiscard]] bool hasTold() const {
        std::error_code isAbsent;
        const auto size = std::filesystem::file_size(root() / "told", isAbsent);
        return !isAbsent && size > 0;
    }

    // A value that was loaded must have been set some time, and not before the one that the last load had.
    void checkWhatWasTold(int run) {
        std::ifstream told(root() / "told");
        std::string what;
        int index = 0;
        unsigned value = 0;
        std::map<int, unsigned> loaded;
        while (told >> what >> index >> value) {
            if (what == "S") {
                m_set[index].insert(value);
                continue;
            }
            if (what == "D") {
                m_stored.insert(index);
                continue;
            }
            EXPECT_TRUE(value != 0 || !m_stored.contains(index))
                << "run " << run << " P" << index << " was stored";
            EXPECT_TRUE(value == 0 || m_set[index].contains(value))
                << "run " << run << " P" << index << ' ' << value;
            EXPECT_GE(value, m_lastLoaded[index]) << "run " << run << " P" << index;
            loaded[index] = value;
        }
        for (const auto& [property, number] : loaded)
            m_lastLoaded[property] = number;
        if (!loaded.empty())
            ++m_loads;
    }

    std::map<int, std::set<unsigned>> m_set;
    std::map<int, unsigned> m_lastLoaded;
    std::set<int> m_stored;
    int m_loads = 0;
};

TEST_F(Crash, AKilledWriterNeverLosesAStoredValueNorInventsOne) {
    std::mt19937 random(4711); // NOLINT(cert-msc51-cpp): the same kills each time
    for (int run = 0; run < kRuns && !HasFailure(); ++run) {
        const bool atAStep = run % 2 == 0;
        if (run % 10 >= 8)
            writeOverride(static_cast<unsigned>(run) * 100);
        const auto writer = startWriter(run, atAStep ? 1 + (run / 2) % kStepsOfTwoRewrites : 0);
        if (!atAStep) {
            EXPECT_TRUE(eventually([&] { return hasTold() || !writer->isRunning(); }));
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 6'000)); // any moment is as good
            if (writer->isRunning())
                writer->kill();
        }
        EXPECT_TRUE(eventually([&writer] { return !writer->isRunning(); }));
        checkWhatWasTold(run);
    }
    EXPECT_GT(m_loads, kRuns / 2);
}

} // namespace
