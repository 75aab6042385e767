#pragma once

#include "bench/TemporaryRoot.h"
#include "bench/picl/OwnerProgram.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>

#include <fstream>
#include <memory>
#include <string>

/// Asks an owner of properties over D-Bus.
class DBusQuestioner {
public:
    enum class Way { Direct, ThroughBus };

    explicit DBusQuestioner(Way way) {
        if (way == Way::ThroughBus)
            startBus();
        m_owner = std::make_unique<OwnerProgram>(
            "dbus_owner", way == Way::Direct ? std::vector{address()} : std::vector{address(), busName()});
        const QString where = QString::fromStdString(address());
        m_connection = std::make_unique<QDBusConnection>(
            way == Way::Direct ? QDBusConnection::connectToPeer(where, QStringLiteral("owner"))
                               : QDBusConnection::connectToBus(where, QStringLiteral("bus")));
        m_service = way == Way::Direct ? QString() : QString::fromStdString(busName());
    }

    [[nodiscard]] QVariant get(const QString& property) const {
        return qvariant_cast<QDBusVariant>(ask(QStringLiteral("Get"), {interfaceName(), property})).variant();
    }

    [[nodiscard]] QVariantMap getAll() const {
        return qdbus_cast<QVariantMap>(ask(QStringLiteral("GetAll"), {interfaceName()}));
    }

private:
    [[nodiscard]] QVariant ask(const QString& member, const QVariantList& arguments) const {
        QDBusMessage question =
            QDBusMessage::createMethodCall(m_service, QStringLiteral("/properties"),
                                           QStringLiteral("org.freedesktop.DBus.Properties"), member);
        question.setArguments(arguments);
        const QDBusMessage answer = m_connection->call(question);
        require(answer.type() == QDBusMessage::ReplyMessage, "the peer does not answer");
        return answer.arguments().value(0);
    }

    // A bus of this run's own, which knows no services but those that come.
    void startBus() {
        const std::string file = m_root.path() / "bus.conf";
        std::ofstream(file)
            << "<busconfig><type>session</type><listen>" << address()
            << "</listen><auth>EXTERNAL</auth><policy context=\"default\">"
               "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/><allow own=\"*\"/>"
               "</policy></busconfig>\n";
        m_bus = std::make_unique<OwnerProgram>(
            "/usr/bin/dbus-daemon",
            std::vector<std::string>{"--nofork", "--print-address", "--config-file=" + file});
    }

    static const QString& interfaceName() {
        static const QString name = QStringLiteral("org.upgradeui.Properties");
        return name;
    }

    static std::string busName() { return "org.upgradeui.Owner"; }
    [[nodiscard]] std::string address() const { return "unix:path=" + (m_root.path() / "bus").string(); }

    TemporaryRoot m_root;
    std::unique_ptr<OwnerProgram> m_bus; // absent without one
    std::unique_ptr<OwnerProgram> m_owner;
    std::unique_ptr<QDBusConnection> m_connection;
    QString m_service; // empty without a bus
};
