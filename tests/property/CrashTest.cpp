#include "property/PropertyFile.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/DeviceRootTest.h"

#include <fstream>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <thread>

namespace {

#if defined(__SANITIZE_THREAD__)
constexpr int kRuns = 150; // that sanitizer makes a start ten times slower
#else
constexpr int kRuns = 1000;
#endif
constexpr int kStepsOfTwoRewrites = 50; // and of the load before them

enum class Storage { Intact, FolderAwayAtStartup, BackupBlocked };

/// A program that changes properties is killed again and again: at every step of its file work, and at any
/// moment.
class Crash : public DeviceRootTest, public ::testing::WithParamInterface<Storage> {
protected:
    Crash() {
        std::filesystem::create_directory(root() / "store");
        std::filesystem::create_directory(root() / "boot");
        if (GetParam() == Storage::BackupBlocked)
            std::filesystem::create_directory(root() / "store/AppPreferences.ini.bak");
    }

    // Runs the program once and kills it, at a step of its file work or at a random moment.
    void run(int number, int step, std::chrono::microseconds lifetime) {
        m_folderIsAway = GetParam() == Storage::FolderAwayAtStartup && number % 2 != 0;
        if (m_folderIsAway)
            std::filesystem::rename(root() / "store", root() / "away");
        std::filesystem::remove(root() / "output");
        ChildProcess writer({CRASH_WRITER, root().string(), std::to_string(1 + number * 100),
                             std::to_string(1 + number / 25), std::to_string(step)},
                            root() / "output");
        EXPECT_TRUE(eventually([&] { return hasOutput() || !writer.isRunning(); }));
        if (m_folderIsAway)
            std::filesystem::rename(root() / "away", root() / "store");
        if (step == 0) {
            std::this_thread::sleep_for(lifetime); // any moment will do
            if (writer.isRunning())
                writer.kill();
        }
        EXPECT_TRUE(eventually([&writer] { return !writer.isRunning(); }));
        checkOutput(number);
    }

    // A value from outside for the first property, between those of this run and of the one before.
    void writeOverride(unsigned value) {
        std::ofstream file(root() / "boot/AppPreferencesOverride.ini", std::ios::binary);
        file << withFileCheck("G:P0|g:n=" + std::to_string(value) + '\n');
        m_set[0].insert(value);
    }

    int m_loads = 0; // of stored values

private:
    [[nodiscard]] bool hasOutput() const {
        std::error_code isAbsent;
        const auto size = std::filesystem::file_size(root() / "output", isAbsent);
        return !isAbsent && size > 0;
    }

    void checkOutput(int run) {
        std::ifstream output(root() / "output");
        std::map<int, unsigned> loaded;
        for (std::string line; std::getline(output, line);) {
            std::istringstream fields(line);
            std::string kind;
            int index = 0;
            unsigned value = 0;
            if (!(fields >> kind >> index >> value))
                continue; // a line of the log
            if (kind == "S")
                m_set[index].insert(value);
            else if (kind == "D")
                m_stored.insert(index);
            else if (!m_folderIsAway)
                checkLoaded(index, loaded[index] = value, run);
        }
        for (const auto& [property, number] : loaded) {
            m_lastLoaded[property] = std::max(m_lastLoaded[property], number);
            m_loads += number != 0 ? 1 : 0;
        }
    }

    // A loaded value was set at some time, and not before the one of the last load. Without a backup a kill
    // in the middle of a rewrite may cost values, but it invents none.
    void checkLoaded(int index, unsigned value, int run) {
        const std::string where = "run " + std::to_string(run) + " P" + std::to_string(index);
        if (value == 0) {
            EXPECT_TRUE(GetParam() == Storage::BackupBlocked || !m_stored.contains(index))
                << where << " was stored";
            return;
        }
        EXPECT_TRUE(m_set[index].contains(value)) << where << ' ' << value;
        EXPECT_GE(value, m_lastLoaded[index]) << where;
    }

    bool m_folderIsAway = false;
    std::map<int, std::set<unsigned>> m_set;
    std::map<int, unsigned> m_lastLoaded;
    std::set<int> m_stored;
};

TEST_P(Crash, AKilledWriterNeverLosesAStoredValueNorInventsOne) {
    std::mt19937 random(4711); // NOLINT(cert-msc51-cpp): the same kills each time
    for (int number = 0; number < kRuns && !HasFailure(); ++number) {
        if (number % 10 >= 8)
            writeOverride(static_cast<unsigned>(number) * 100);
        run(number, number % 4 < 2 ? 1 + (number / 4) % kStepsOfTwoRewrites : 0,
            std::chrono::microseconds(random() % 6'000));
    }
    EXPECT_GT(m_loads, kRuns / 2);
}

std::string nameOf(const ::testing::TestParamInfo<Storage>& storage) {
    static constexpr const char* kNames[] = {"Intact", "FolderAwayAtStartup", "BackupBlocked"};
    return kNames[static_cast<int>(storage.param)];
}

INSTANTIATE_TEST_SUITE_P(Storages, Crash,
                         ::testing::Values(Storage::Intact, Storage::FolderAwayAtStartup,
                                           Storage::BackupBlocked),
                         nameOf);

} // namespace
