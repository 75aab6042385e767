#include "bench/RatioReporter.h"
#include "bench/TemporaryRoot.h"

#include "app/UpgradeInterface.h"
#include "app/UpgradeMessage.h"
#include "picl/JSONPICL.h"
#include "picl/PICLIF.h"
#include "platform/HandleStream.h"
#include "platform/SimpleEvent.h"
#include "platform/ThreadFactory.h"
#include "platform/os/DeviceRoot.h"
#include "platform/os/LocalListener.h"
#include "property/PropertyVocabulary.h"
#include "property/PublishingPropertyManager.h"
#include "tools/upgrader/UpgraderLink.h"

#include <atomic>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int kTimes = 50;
constexpr int kRepetitions = 7;

/// The frame in which the firmware tells of AC power.
void report(Stream& stream, bool connected) {
    const auto text = [](std::string_view view) { return std::string(view); };
    PropertyGetResponse response;
    response.component = text(vocabulary::components::kFirmwareDriver.guid);
    response.group = text(vocabulary::groups::kBattery.guid);
    response.guid = text(vocabulary::properties::kBatteryACConnected.guid);
    response.value = connected ? "True" : "False";
    response.status = text(status::kSuccessful);
    JSONPICL message;
    message.addGetResponses(std::make_unique<PropertyGetResponses>(1, std::move(response)));
    if (!message.exportTo(stream))
        throw std::runtime_error("the report is not taken");
}

/// A battery printer in this process: an upgrader, the firmware at the other end of "PRN0:", the link.
class BatteryPrinter {
public:
    BatteryPrinter() {
        for (const char* const folder : {"dev", "boot", "store"})
            std::filesystem::create_directory(m_root.path() / folder);
        std::ofstream(m_root.path() / "boot/systemfeatures.json") << R"({"features": ["Battery"]})";
        os::setDeviceRoot(m_root.path().string());
        os::LocalListener listener((m_root.path() / "dev/PRN0").string());
        std::string why;
        m_upgrader = UpgraderLink::create(why);
        m_manager = std::make_shared<PublishingPropertyManager>(m_threads, kThreadPriority, kThreadPriority,
                                                                L"/store/AppPreferences.ini", L"/boot/none");
        m_client = std::make_unique<PICLIF>(m_threads, m_manager);
        if (!m_upgrader || !m_client->connectToDevice(L"PRN0:"))
            throw std::runtime_error("no connection " + why);
        m_firmware = std::make_unique<HandleStream>(listener.accept());
        m_reader = std::thread([this] { answer(); });
        m_link = createUpgradeInterface(m_client->agent(), m_manager);
        m_link->setDisplayHandler([this](UpgradeDisplay display) {
            m_shown = Clock::now();
            m_display = display;
            m_displayChanged.signal();
        });
        m_link->start();
    }

    ~BatteryPrinter() {
        m_link.reset();
        m_firmware->close();
        m_client.reset();
        m_reader.join();
    }

    BatteryPrinter(const BatteryPrinter&) = delete;
    BatteryPrinter& operator=(const BatteryPrinter&) = delete;

    /// Asks for AC power, connects it and closes the dialogue. Returns how long the display took to follow.
    std::chrono::duration<double> connectACPower() {
        report(*m_firmware, false);
        while (m_link->isACConnected())
            std::this_thread::yield();
        await([&] { return m_upgrader->send(MsgFileFound, 10s); }, UpgradeDisplay::DisplayConnectACPower);
        const Clock::time_point begin = Clock::now();
        await(
            [&] {
                report(*m_firmware, true);
                return true;
            },
            UpgradeDisplay::DisplayFileFound);
        const auto taken = m_shown - begin;
        await([&] { return m_upgrader->send(MsgFailed, 10s); }, UpgradeDisplay::DisplayFailed);
        m_link->sendUserAction(UserAction::ActionClose); // back to where it began
        return taken;
    }

private:
    // What the link shows in between, as at the end of a dialogue, is passed over.
    template <typename Act>
    void await(Act act, UpgradeDisplay display) {
        if (!act())
            throw std::runtime_error("the link does not take its code");
        do
            m_displayChanged.wait();
        while (m_display != display);
    }

    void answer() {
        for (JSONPICL message; message.importFrom(*m_firmware);) {
            if (message.has(keys::kSubscribeRequests))
                report(*m_firmware, false);
        }
    }

    TemporaryRoot m_root;
    const std::shared_ptr<ThreadFactory> m_threads = std::make_shared<ThreadFactory>(kThreadPriority);
    std::unique_ptr<UpgraderLink> m_upgrader;
    std::shared_ptr<PublishingPropertyManager> m_manager;
    std::unique_ptr<PICLIF> m_client;
    std::unique_ptr<HandleStream> m_firmware;
    std::thread m_reader;
    std::shared_ptr<UpgradeInterface> m_link;
    std::atomic<UpgradeDisplay> m_display = UpgradeDisplay::DisplayIdle;
    Clock::time_point m_shown;
    SimpleEvent m_displayChanged{true};
};

// From the frame of the firmware to the handler of the display.
void acPowerToDisplay(benchmark::State& state) {
    BatteryPrinter printer;
    double total = 0;
    for (auto _ : state) {
        const double taken = printer.connectACPower().count();
        state.SetIterationTime(taken);
        total += taken;
    }
    state.counters["ms"] = total * 1000 / kTimes;
}

BENCHMARK(acPowerToDisplay)
    ->UseManualTime()
    ->Iterations(kTimes)
    ->Repetitions(kRepetitions)
    ->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char* argv[]) {
    return runAndCompare(argc, argv, {{"acPowerToDisplay", "", 1, Comparison::Kind::Counter, "ms"}});
}
