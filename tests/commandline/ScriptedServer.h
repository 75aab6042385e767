#pragma once

#include "picl/JSONPICL.h"
#include "platform/os/LocalListener.h"

#include <cstddef>
#include <functional>
#include <list>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

/// A property server that a test plays: it has the properties that it is given, answers as a server does, or
/// as one that is broken in a way of the test's choice.
class ScriptedServer {
public:
    /// Listens on the device of the device root.
    ScriptedServer();
    ~ScriptedServer();

    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    /// Adds a property, whose GUIDs are made of the names: "c-", "g-" or "p-" before them.
    void add(const std::string& program, const std::string& group, const std::string& name,
             const std::string& value);
    void add(const PropertyGetResponse& property);

    /// Takes back or changes the property called @p name, and reports it to who has subscribed.
    void remove(const std::string& name);
    void change(const std::string& name, const std::string& value);

    /// Reports all properties once more as they are.
    void repeat();

    /// Waits until somebody has subscribed to something.
    bool hasSubscriber();

    /// Waits until somebody has asked something.
    bool wasAsked();

    /// Ends all connections.
    void hangUp();

    [[nodiscard]] std::string valueOf(const std::string& name);
    [[nodiscard]] int sets();

    /// Sets one of the fields below.
    template <typename Type, typename Value>
    void let(Type ScriptedServer::*field, Value value) {
        const std::scoped_lock guard(m_lock);
        this->*field = std::move(value);
    }

    // Set by let() alone.
    std::function<std::string(const PropertyGetResponse& property, const std::string& value)> onSet =
        [](const PropertyGetResponse&, const std::string& value) { return value; };
    std::string silentProgram;         ///< It answers no question.
    bool isSilentForAll = false;       ///< It answers no question for all.
    std::string saysInstead;           ///< These bytes to each question.
    bool endsInsteadOfAnswer = false;  ///< It hangs up on a question.
    std::size_t reportsOfFrame = 1000; ///< Longer answers come in several frames.
    std::size_t largestWrite = 65536;  ///< Bytes that travel in one piece.

private:
    struct Connection {
        os::Descriptor socket;
        std::thread reader;
        bool isSubscribed = false;
    };

    void listen();
    void serve(Connection& connection);
    void handle(Connection& connection, const JSONPICL& message);
    void answerAll(Connection& connection);
    void answer(Connection& connection, const JSONPICL& message);
    void write(Connection& connection, const std::string& bytes) const;
    void send(Connection& connection, std::vector<PropertyGetResponse> reports, bool isForAll) const;
    void publish(const PropertyGetResponse& report);
    PropertyGetResponse& named(const std::string& name);

    std::mutex m_lock; // guards all below
    std::vector<PropertyGetResponse> m_properties;
    std::list<Connection> m_connections;
    int m_messages = 0;
    int m_sets = 0;
    os::LocalListener m_listener;
    std::thread m_thread;
};
