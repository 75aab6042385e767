#include "bench/Program.h"
#include "bench/RatioReporter.h"
#include "bench/TemporaryRoot.h"
#include "bench/picl/OwnedProperties.h"

#include "picl/JSONPICL.h"
#include "platform/Stream.h"
#include "platform/os/InterruptibleDescriptor.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>

#include <ctime>
#include <fcntl.h>
#include <set>
#include <sys/socket.h>
#include <sys/un.h>

namespace {

constexpr int kQuestions = 500;
constexpr int kRepetitions = 21;
constexpr int kPeriods = 3;
constexpr int kPeriodRepetitions = 5;
constexpr double kPeriodSeconds = 0.5;

void require(bool holds, const char* what) {
    if (!holds)
        throw std::runtime_error(what);
}

/// A program that owns properties. The benchmark goes on when it is ready, and ends it.
class Owner {
public:
    Owner(const char* program, std::vector<std::string> arguments)
        : m_program(programFolder() / program, m_ready.writeEnd.value(), std::move(arguments)) {
        m_ready.writeEnd = os::Descriptor();
        char byte = 0;
        require(::read(m_ready.readEnd.value(), &byte, 1) == 1, "an owner does not get ready");
    }
    ~Owner() { m_program.kill(); }

    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;

    /// Returns the processor time that it has had, in seconds.
    [[nodiscard]] double processorTime() const {
        clockid_t clock{};
        timespec time{};
        require(::clock_getcpuclockid(m_program.id(), &clock) == 0 && ::clock_gettime(clock, &time) == 0,
                "no clock of the owner");
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
    }

private:
    struct Ready {
        Ready() {
            int ends[2];
            require(::pipe2(ends, O_CLOEXEC) == 0, "no pipe");
            readEnd = os::Descriptor(ends[0]);
            writeEnd = os::Descriptor(ends[1]);
        }
        os::Descriptor readEnd;
        os::Descriptor writeEnd;
    };

    Ready m_ready;
    Program m_program;
};

/// The property server's end of a device.
class SocketStream final : public Stream {
public:
    explicit SocketStream(os::Descriptor socket) : Stream(kSocketStream), m_socket(std::move(socket)) {}

    [[nodiscard]] std::int32_t read(void* buffer, std::int32_t size) override {
        return result(m_socket.read(buffer, static_cast<std::size_t>(size)));
    }
    [[nodiscard]] std::int32_t write(const void* buffer, std::int32_t size) override {
        return result(m_socket.write(buffer, static_cast<std::size_t>(size)));
    }
    void close() override { m_socket.close(); }

private:
    static std::int32_t result(const os::Transfer& transfer) {
        return transfer.failure ? StreamFailed : static_cast<std::int32_t>(transfer.count);
    }

    os::InterruptibleDescriptor m_socket;
};

/// A Unix socket in the place of the device "PRN0:".
class Device {
public:
    explicit Device(const std::filesystem::path& root) : m_socket(::socket(AF_UNIX, SOCK_STREAM, 0)) {
        std::filesystem::create_directory(root / "dev");
        std::filesystem::create_directory(root / "store");
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        (root / "dev/PRN0").string().copy(address.sun_path, sizeof address.sun_path - 1);
        require(::bind(m_socket.value(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
                    ::listen(m_socket.value(), 1) == 0,
                "no device");
    }

    [[nodiscard]] os::Descriptor accept() const {
        return os::Descriptor(::accept4(m_socket.value(), nullptr, nullptr, SOCK_CLOEXEC));
    }

private:
    os::Descriptor m_socket;
};

class Question final : public JSONPICLImporterExporter {
public:
    Question(std::string_view key, JSONValue content) { m_object[key] = std::move(content); }
};

JSONValue itemOf(std::size_t number) {
    JSONObject item;
    item["Component"] = std::string(vocabulary::components::kUpgradeUI.guid);
    item["GUID"] = std::string(vocabulary::groups::kDebugZone.guid) + ":" + owned::guid(number);
    return item;
}

JSONValue listOf(JSONValue item) {
    JSONArray list;
    list.append(std::move(item));
    return list;
}

/// Asks an owner of @p count properties over its device.
class PiclQuestioner {
public:
    explicit PiclQuestioner(std::size_t count)
        : m_device(m_root.path()),
          m_owner("picl_owner", {m_root.path().string(), std::to_string(count - owned::kOfTheAgent)}),
          m_stream(m_device.accept()) {
        require(hear().size() == count, "the owner does not begin with all its properties");
        static_cast<void>(hear()); // they changed when they came; nothing does of itself from now on
    }

    void say(Question question) { require(question.exportTo(m_stream), "the owner does not listen"); }

    /// Returns the reports of the next frame.
    [[nodiscard]] PropertyGetResponses hear() {
        JSONPICL answer;
        require(answer.importFrom(m_stream), "the owner does not answer");
        PropertyGetResponses reports;
        answer.readGetResponses(reports);
        return reports;
    }

    [[nodiscard]] double processorTime() const { return m_owner.processorTime(); }

private:
    TemporaryRoot m_root;
    Device m_device;
    Owner m_owner;
    SocketStream m_stream;
};

PiclQuestioner& piclQuestioner() {
    static PiclQuestioner questioner(owned::kAll);
    return questioner;
}

void getByPicl(benchmark::State& state) {
    PiclQuestioner& owner = piclQuestioner();
    std::size_t number = 0;
    for (auto _ : state) {
        owner.say({keys::kGetRequests, listOf(itemOf(number))});
        const PropertyGetResponses reports = owner.hear();
        require(reports.size() == 1 && reports[0].value == std::to_string(owned::value(number)),
                "not the property that was asked for");
        number = (number + 1) % (owned::kAll - owned::kOfTheAgent);
    }
}

void getAllByPicl(benchmark::State& state) {
    PiclQuestioner& owner = piclQuestioner();
    for (auto _ : state) {
        owner.say({keys::kGetAll, true});
        require(owner.hear().size() == owned::kAll, "not all properties");
    }
}

/// Asks an owner of properties over a connection of its own, without a bus.
class DBusQuestioner {
public:
    [[nodiscard]] QVariant ask(const QString& member, const QVariantList& arguments) const {
        QDBusMessage question = QDBusMessage::createMethodCall(
            {}, QStringLiteral("/properties"), QStringLiteral("org.freedesktop.DBus.Properties"), member);
        question.setArguments(arguments);
        const QDBusMessage answer = m_connection.call(question);
        require(answer.type() == QDBusMessage::ReplyMessage, "the peer does not answer");
        return answer.arguments().value(0);
    }

private:
    [[nodiscard]] std::string address() const { return "unix:path=" + (m_root.path() / "bus").string(); }

    TemporaryRoot m_root;
    Owner m_owner{"dbus_owner", {address()}};
    QDBusConnection m_connection =
        QDBusConnection::connectToPeer(QString::fromStdString(address()), QStringLiteral("owner"));
};

const DBusQuestioner& dbusQuestioner() {
    static const DBusQuestioner questioner;
    return questioner;
}

const QString& interfaceName() {
    static const QString name = QStringLiteral("org.upgradeui.Properties");
    return name;
}

void getByDBus(benchmark::State& state) {
    const DBusQuestioner& owner = dbusQuestioner();
    for (auto _ : state) {
        const QVariant answer =
            owner.ask(QStringLiteral("Get"), {interfaceName(), QStringLiteral("number17")});
        require(qvariant_cast<QDBusVariant>(answer).variant().toString().toUInt() == owned::value(0),
                "not the property that was asked for");
    }
}

void getAllByDBus(benchmark::State& state) {
    const DBusQuestioner& owner = dbusQuestioner();
    for (auto _ : state) {
        const auto values = qdbus_cast<QVariantMap>(owner.ask(QStringLiteral("GetAll"), {interfaceName()}));
        require(static_cast<std::size_t>(values.size()) == owned::kAll, "not all properties");
    }
}

/// Returns whether each of the many properties is reported once, with @p value, and nothing else.
bool haveAllChanged(const PropertyGetResponses& reports, const std::string& value) {
    std::set<std::string_view> guids;
    for (const PropertyGetResponse& report : reports) {
        if (report.value == value)
            guids.insert(report.guid);
    }
    return reports.size() == owned::kMany && guids.size() == owned::kMany;
}

/// Has all properties of @p owner set to @p value and waits for the frame that tells it.
void changeMany(PiclQuestioner& owner, const std::string& value) {
    JSONValue item = itemOf(owned::kFirst);
    item.objectValue["Value"] = value;
    owner.say({keys::kSetRequests, listOf(std::move(item))});
    require(haveAllChanged(owner.hear(), value), "the changes do not come in one frame");
}

// A new owner each time: its period begins with the frame that was heard last.
void publishMany(benchmark::State& state) {
    PiclQuestioner owner(owned::kMany + owned::kOfTheAgent);
    std::uint32_t value = 0;
    double used = 0;
    for (auto _ : state) {
        const double before = owner.processorTime();
        changeMany(owner, std::to_string(++value));
        const double period = owner.processorTime() - before;
        state.SetIterationTime(period);
        used += period;
    }
    owner.say({keys::kGetRequests, listOf(itemOf(owned::kFirst))});
    require(owner.hear().size() == 1, "more than one frame in a period");
    state.counters["percent"] = 100 * used / (kPeriods * kPeriodSeconds);
}

#define QUESTIONS                                                                                            \
    Iterations(kQuestions)->Repetitions(kRepetitions)->UseRealTime()->Unit(benchmark::kMicrosecond)
BENCHMARK(getByPicl)->QUESTIONS;
BENCHMARK(getByDBus)->QUESTIONS;
BENCHMARK(getAllByPicl)->QUESTIONS;
BENCHMARK(getAllByDBus)->QUESTIONS;
BENCHMARK(publishMany)
    ->UseManualTime()
    ->Iterations(kPeriods)
    ->Repetitions(kPeriodRepetitions)
    ->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    return runAndCompare(argc, argv,
                         {{"getByPicl", "getByDBus", 0.5},
                          {"getAllByPicl", "getAllByDBus", 0.5},
                          {"publishMany", "", 5, Comparison::Kind::Counter, "percent"}});
}
