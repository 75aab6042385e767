#include "tests/commandline/ScriptedServer.h"

#include "picl/FrameReader.h"
#include "picl/PropertyReports.h"
#include "platform/os/DeviceRoot.h"
#include "tests/support/DeviceRootTest.h"

#include <algorithm>
#include <array>
#include <sys/socket.h>
#include <unistd.h>

namespace {

std::string devicePath() {
    const std::filesystem::path path = os::devicePath("PRN0:");
    std::filesystem::create_directories(path.parent_path());
    return path.string();
}

} // namespace

ScriptedServer::ScriptedServer() : m_listener(devicePath()), m_thread([this] { listen(); }) {
    EXPECT_TRUE(m_listener.isOpen());
}

ScriptedServer::~ScriptedServer() {
    m_listener.close();
    m_thread.join();
    hangUp();
    for (Connection& connection : m_connections)
        connection.reader.join();
}

void ScriptedServer::add(const std::string& program, const std::string& group, const std::string& name,
                         const std::string& value) {
    add(PropertyGetResponse{.group = "g-" + group,
                            .groupString = group,
                            .guid = "p-" + name,
                            .nameString = name,
                            .value = value,
                            .status = std::string(status::kSuccessful),
                            .component = "c-" + program,
                            .componentString = program});
}

void ScriptedServer::add(const PropertyGetResponse& property) {
    const std::scoped_lock guard(m_lock);
    m_properties.push_back(property);
    publish(property);
}

void ScriptedServer::remove(const std::string& name) {
    const std::scoped_lock guard(m_lock);
    PropertyGetResponse report = named(name);
    report.status = status::kNoLongerAvailable;
    m_properties.erase(std::ranges::find(m_properties, name, &PropertyGetResponse::nameString));
    publish(report);
}

void ScriptedServer::change(const std::string& name, const std::string& value) {
    const std::scoped_lock guard(m_lock);
    named(name).value = value;
    publish(named(name));
}

void ScriptedServer::repeat() {
    const std::scoped_lock guard(m_lock);
    for (const PropertyGetResponse& property : m_properties)
        publish(property);
}

bool ScriptedServer::hasSubscriber() {
    return eventually([this] {
        const std::scoped_lock guard(m_lock);
        return std::ranges::any_of(m_connections, &Connection::isSubscribed);
    });
}

bool ScriptedServer::wasAsked() {
    return eventually([this] {
        const std::scoped_lock guard(m_lock);
        return m_messages > 0;
    });
}

void ScriptedServer::hangUp() {
    const std::scoped_lock guard(m_lock);
    for (Connection& connection : m_connections)
        ::shutdown(connection.socket.value(), SHUT_RDWR);
}

std::string ScriptedServer::valueOf(const std::string& name) {
    const std::scoped_lock guard(m_lock);
    return named(name).value;
}

int ScriptedServer::sets() {
    const std::scoped_lock guard(m_lock);
    return m_sets;
}

PropertyGetResponse& ScriptedServer::named(const std::string& name) {
    return *std::ranges::find(m_properties, name, &PropertyGetResponse::nameString);
}

void ScriptedServer::listen() {
    for (;;) {
        os::Descriptor socket = m_listener.accept();
        if (!socket.isOpen())
            return;
        const std::scoped_lock guard(m_lock);
        Connection& connection = m_connections.emplace_back();
        connection.socket = std::move(socket);
        connection.reader = std::thread([this, &connection] { serve(connection); });
    }
}

void ScriptedServer::serve(Connection& connection) {
    FrameReader reader;
    std::array<char, 4096> bytes{};
    for (;;) {
        const ssize_t count = ::read(connection.socket.value(), bytes.data(), bytes.size());
        if (count <= 0)
            break;
        reader.take({bytes.data(), static_cast<std::size_t>(count)});
        const std::scoped_lock guard(m_lock);
        for (JSONPICL message; reader.next(message) == FrameReader::Result::Message;)
            handle(connection, message);
    }
    ::shutdown(connection.socket.value(), SHUT_RDWR);
}

void ScriptedServer::handle(Connection& connection, const JSONPICL& message) {
    ++m_messages;
    if (endsInsteadOfAnswer) {
        ::shutdown(connection.socket.value(), SHUT_RDWR);
        return;
    }
    if (!saysInstead.empty()) {
        write(connection, saysInstead);
        return;
    }
    message.forEachSetRequest([&](const PropertySetRequest& request) {
        ++m_sets;
        for (PropertyGetResponse& property : m_properties) {
            if (property.component == request.component && property.guid == request.guid)
                property.value = onSet(property, request.value);
        }
    });
    if (!isSilentForAll && (message.has(keys::kGetAll) || message.hasSubscribeAll()))
        answerAll(connection);
    answer(connection, message);
    connection.isSubscribed =
        connection.isSubscribed || message.hasSubscribeAll() || message.has(keys::kSubscribeRequests);
}

void ScriptedServer::answerAll(Connection& connection) {
    std::size_t first = 0;
    do {
        const std::size_t last = std::min(first + reportsOfFrame, m_properties.size());
        send(connection,
             {m_properties.begin() + static_cast<std::ptrdiff_t>(first),
              m_properties.begin() + static_cast<std::ptrdiff_t>(last)},
             true);
        first = last;
    } while (first < m_properties.size());
}

void ScriptedServer::answer(Connection& connection, const JSONPICL& message) {
    std::vector<PropertyGetResponse> reports;
    message.forEachGetRequest([&](const PropertyGetRequest& request) {
        if (!silentProgram.empty() && request.component == "c-" + silentProgram)
            return;
        const auto found = std::ranges::find_if(m_properties, [&](const PropertyGetResponse& property) {
            return property.component == request.component && property.group == request.group &&
                   property.guid == request.guid;
        });
        reports.push_back(found != m_properties.end() ? *found : notFoundReport(request));
    });
    if (!reports.empty())
        send(connection, std::move(reports), false);
}

void ScriptedServer::publish(const PropertyGetResponse& report) {
    for (Connection& connection : m_connections) {
        if (connection.isSubscribed)
            send(connection, {report}, false);
    }
}

void ScriptedServer::send(Connection& connection, std::vector<PropertyGetResponse> reports,
                          bool isForAll) const {
    auto responses = std::make_unique<PropertyGetResponses>();
    for (PropertyGetResponse& report : reports) {
        for (std::string* text : {&report.group, &report.guid, &report.nameString, &report.value})
            *text = escapeText(*text);
        responses->push_back(std::move(report));
    }
    JSONPICL message;
    message.addGetResponses(std::move(responses));
    if (isForAll)
        message.addGetAllPropertiesResponse();
    write(connection, message.toFrame());
}

void ScriptedServer::write(Connection& connection, const std::string& bytes) const {
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t size = std::min(largestWrite, bytes.size() - at);
        const ssize_t count = ::send(connection.socket.value(), bytes.data() + at, size, MSG_NOSIGNAL);
        if (count <= 0)
            return;
        at += static_cast<std::size_t>(count);
    }
}
