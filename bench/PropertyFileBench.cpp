#include "bench/RatioReporter.h"
#include "bench/TemporaryRoot.h"

#include "platform/ThreadFactory.h"
#include "platform/WideText.h"
#include "property/PropertyFileWriter.h"
#include "property/PropertyKey.h"
#include "property/PropertyManager.h"
#include "property/UInt32Property.h"

#include <QSettings>
#include <QString>

#include <condition_variable>
#include <deque>
#include <fcntl.h>
#include <fstream>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <unistd.h>

namespace {

constexpr std::int32_t kPriority = 251;
constexpr int kRepetitions = 9;
constexpr int kSmall = 50;
constexpr int kLarge = 5000;
constexpr unsigned kRestMicroseconds = 12'000;

std::string guidOf(int index) { return "00000000-0000-0000-0000-" + std::to_string(100'000'000'000 + index); }

const std::string kGroup = "99A61D40-20CE-41EA-A579-EB92C6ED94C6";

std::string lineOf(int index, int value) {
    return fullKey(kGroup, guidOf(index)) + "|General:Property " + std::to_string(index) + '=' +
           std::to_string(value);
}

// A property file and an INI file of the same content.
struct Files {
    explicit Files(const std::filesystem::path& folder, int lines)
        : property((folder / "property").string()), ini((folder / "settings.ini").string()) {
        std::string text;
        QSettings settings(QString::fromStdString(ini), QSettings::IniFormat);
        for (int i = 0; i < lines; ++i) {
            text += lineOf(i, i) + '\n';
            settings.setValue(QString::fromStdString(guidOf(i)), i);
        }
        settings.sync();
        std::ofstream(property, std::ios::binary) << withFileCheck(text);
    }
    std::string property;
    std::string ini;
};

// A folder in memory, where a sync costs nothing; otherwise one on the medium.
std::filesystem::path benchFolder(bool onMedium) {
    const std::filesystem::path base = onMedium ? std::filesystem::current_path() : "/dev/shm";
    std::string pattern = (base / "upgradeui-bench-XXXXXX").string();
    return ::mkdtemp(pattern.data());
}

class Folder {
public:
    explicit Folder(bool onMedium) : m_path(benchFolder(onMedium)) {}
    ~Folder() { std::filesystem::remove_all(m_path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

void changeToDisk(benchmark::State& state, bool onMedium) {
    const Folder folder(onMedium);
    const Files files(folder.path(), kSmall);
    PropertyFileWriter writer;
    const std::wstring file = toWide(files.property);
    const std::string prefix = lineOf(kSmall / 2, 0).substr(0, lineOf(kSmall / 2, 0).find('='));
    int value = 0;
    for (auto _ : state) {
        writer.queueLine(prefix, std::to_string(++value), file);
        writer.drainWriteQueue();
    }
}

void changeToDiskBySettings(benchmark::State& state, bool onMedium) {
    const Folder folder(onMedium);
    const Files files(folder.path(), kSmall);
    QSettings settings(QString::fromStdString(files.ini), QSettings::IniFormat);
    int value = 0;
    for (auto _ : state) {
        settings.setValue(QString::fromStdString(guidOf(kSmall / 2)), ++value);
        settings.sync();
        const int file = onMedium ? ::open(files.ini.c_str(), O_RDONLY | O_CLOEXEC) : -1;
        if (file >= 0) {
            ::fsync(file);
            ::close(file);
        }
    }
}

void onDiskSynced(benchmark::State& state) { changeToDisk(state, true); }
void onDiskSyncedBySettings(benchmark::State& state) { changeToDiskBySettings(state, true); }
void onDisk(benchmark::State& state) { changeToDisk(state, false); }
void onDiskBySettings(benchmark::State& state) { changeToDiskBySettings(state, false); }

void load(benchmark::State& state, int lines) {
    const Folder folder(false);
    const Files files(folder.path(), lines);
    const std::wstring file = toWide(files.property);
    for (auto _ : state) {
        PropertyFileEntries entries;
        if (!PropertyFileStore::parseFile(file, entries) || entries.size() != static_cast<std::size_t>(lines))
            throw std::runtime_error("the file does not load");
    }
}

void loadBySettings(benchmark::State& state, int lines) {
    const Folder folder(false);
    const Files files(folder.path(), lines);
    for (auto _ : state) {
        // A copy under a new name each time: of a file that it knows QSettings keeps the content.
        state.PauseTiming();
        static int copies = 0;
        const std::string copy = files.ini + std::to_string(++copies);
        std::filesystem::copy_file(files.ini, copy);
        state.ResumeTiming();
        const QSettings settings(QString::fromStdString(copy), QSettings::IniFormat);
        if (settings.allKeys().size() != lines)
            throw std::runtime_error("the settings do not load");
    }
}

void loadSmall(benchmark::State& state) { load(state, kSmall); }
void loadSmallBySettings(benchmark::State& state) { loadBySettings(state, kSmall); }
void loadLarge(benchmark::State& state) { load(state, kLarge); }
void loadLargeBySettings(benchmark::State& state) { loadBySettings(state, kLarge); }

// What a set cannot do without: a lock, the line into a queue, and the news to a consumer that sleeps.
void bareLockPushNotify(benchmark::State& state) {
    std::mutex lock;
    std::condition_variable changed;
    std::deque<std::string> queue;
    bool isDone = false;
    std::thread consumer([&] {
        std::unique_lock guard(lock);
        while (!isDone) {
            changed.wait(guard, [&] { return isDone || !queue.empty(); });
            queue.clear();
        }
    });
    int value = 0;
    for (auto _ : state) {
        std::string line = lineOf(kSmall / 2, ++value);
        {
            const std::scoped_lock guard(lock);
            queue.push_back(std::move(line));
        }
        changed.notify_all();
        state.PauseTiming();
        ::usleep(kRestMicroseconds); // for the consumer to be asleep again
        state.ResumeTiming();
    }
    {
        const std::scoped_lock guard(lock);
        isDone = true;
    }
    changed.notify_all();
    consumer.join();
}

void setStored(benchmark::State& state, int lines) {
    const TemporaryRoot root;
    std::filesystem::create_directory(root.path() / "store");
    const Files files(root.path(), lines);
    std::filesystem::rename(files.property, root.path() / "store/file");
    const auto threads = std::make_shared<ThreadFactory>(kPriority);
    PropertyManager manager(threads, kPriority, kPriority, L"/store/file", L"/boot/none");
    const auto property = std::make_shared<UInt32Property>(
        0U, guidOf(kSmall / 2), "Property " + std::to_string(kSmall / 2), kGroup, "General");
    manager.addPersistentProperty(property);
    std::uint32_t value = 0;
    for (auto _ : state) {
        property->setValue(++value);
        state.PauseTiming();
        ::usleep(kRestMicroseconds); // for the writer to be asleep again
        state.ResumeTiming();
    }
}

void setStoredInSmallFile(benchmark::State& state) { setStored(state, kSmall); }
void setStoredInLargeFile(benchmark::State& state) { setStored(state, kLarge); }

BENCHMARK(onDiskSynced)
    ->Iterations(40)
    ->Repetitions(kRepetitions)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(onDiskSyncedBySettings)
    ->Iterations(40)
    ->Repetitions(kRepetitions)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(onDisk)->Iterations(400)->Repetitions(kRepetitions)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(onDiskBySettings)
    ->Iterations(400)
    ->Repetitions(kRepetitions)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(loadSmall)
    ->Iterations(200)
    ->Repetitions(kRepetitions)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(loadSmallBySettings)
    ->Iterations(200)
    ->Repetitions(kRepetitions)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(loadLarge)->Iterations(20)->Repetitions(kRepetitions)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(loadLargeBySettings)
    ->Iterations(20)
    ->Repetitions(kRepetitions)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(bareLockPushNotify)
    ->Iterations(100)
    ->Repetitions(kRepetitions)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(setStoredInSmallFile)
    ->Iterations(30)
    ->Repetitions(kRepetitions)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(setStoredInLargeFile)
    ->Iterations(30)
    ->Repetitions(kRepetitions)
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char* argv[]) {
    return runAndCompare(argc, argv,
                         {{"onDiskSynced", "onDiskSyncedBySettings", 0.5},
                          {"onDisk", "onDiskBySettings", 1.0 / 3},
                          {"loadSmall", "loadSmallBySettings", 1.0 / 3},
                          {"loadLarge", "loadLargeBySettings", 1.0 / 3},
                          {"setStoredInSmallFile", "bareLockPushNotify", 1.5},
                          {"setStoredInLargeFile", "bareLockPushNotify", 1.5}});
}
