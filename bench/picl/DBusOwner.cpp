#include "bench/picl/OwnedProperties.h"
#include "bench/picl/OwnerProcess.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusServer>
#include <QObject>

#include <optional>

namespace {

/// One object with as many properties as the owner over the protocol has.
class Owner final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.upgradeui.Properties")
    Q_PROPERTY(QString number00 READ value CONSTANT)
    Q_PROPERTY(QString number01 READ value CONSTANT)
    Q_PROPERTY(QString number02 READ value CONSTANT)
    Q_PROPERTY(QString number03 READ value CONSTANT)
    Q_PROPERTY(QString number04 READ value CONSTANT)
    Q_PROPERTY(QString number05 READ value CONSTANT)
    Q_PROPERTY(QString number06 READ value CONSTANT)
    Q_PROPERTY(QString number07 READ value CONSTANT)
    Q_PROPERTY(QString number08 READ value CONSTANT)
    Q_PROPERTY(QString number09 READ value CONSTANT)
    Q_PROPERTY(QString number10 READ value CONSTANT)
    Q_PROPERTY(QString number11 READ value CONSTANT)
    Q_PROPERTY(QString number12 READ value CONSTANT)
    Q_PROPERTY(QString number13 READ value CONSTANT)
    Q_PROPERTY(QString number14 READ value CONSTANT)
    Q_PROPERTY(QString number15 READ value CONSTANT)
    Q_PROPERTY(QString number16 READ value CONSTANT)
    Q_PROPERTY(QString number17 READ value CONSTANT)
    Q_PROPERTY(QString number18 READ value CONSTANT)
    Q_PROPERTY(QString number19 READ value CONSTANT)
    Q_PROPERTY(QString number20 READ value CONSTANT)
    Q_PROPERTY(QString number21 READ value CONSTANT)
    Q_PROPERTY(QString number22 READ value CONSTANT)
    Q_PROPERTY(QString number23 READ value CONSTANT)
    Q_PROPERTY(QString number24 READ value CONSTANT)
    Q_PROPERTY(QString number25 READ value CONSTANT)
    Q_PROPERTY(QString number26 READ value CONSTANT)
    Q_PROPERTY(QString number27 READ value CONSTANT)
    Q_PROPERTY(QString number28 READ value CONSTANT)
    Q_PROPERTY(QString number29 READ value CONSTANT)
    Q_PROPERTY(QString number30 READ value CONSTANT)
    Q_PROPERTY(QString number31 READ value CONSTANT)
    Q_PROPERTY(QString number32 READ value CONSTANT)
    Q_PROPERTY(QString number33 READ value CONSTANT)
    Q_PROPERTY(QString number34 READ value CONSTANT)
    Q_PROPERTY(QString number35 READ value CONSTANT)
    Q_PROPERTY(QString number36 READ value CONSTANT)
    Q_PROPERTY(QString number37 READ value CONSTANT)
    Q_PROPERTY(QString number38 READ value CONSTANT)
    Q_PROPERTY(QString number39 READ value CONSTANT)
    Q_PROPERTY(QString number40 READ value CONSTANT)
    Q_PROPERTY(QString number41 READ value CONSTANT)
    Q_PROPERTY(QString number42 READ value CONSTANT)
    Q_PROPERTY(QString number43 READ value CONSTANT)
    Q_PROPERTY(QString number44 READ value CONSTANT)
    Q_PROPERTY(QString number45 READ value CONSTANT)

public:
    [[nodiscard]] static QString value() { return QString::number(owned::value(0)); }
};

} // namespace

/// Owns the properties and answers at the address of the first argument; where there is a second one, on the
/// bus there, under this name.
int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    if (argc < 2)
        return 2;
    Owner owner;
    const QString address = QString::fromLocal8Bit(argv[1]);
    const auto serveOn = [&owner](QDBusConnection connection) {
        return connection.registerObject(QStringLiteral("/properties"), &owner,
                                         QDBusConnection::ExportAllProperties);
    };
    std::optional<QDBusServer> server;
    if (argc == 2) {
        server.emplace(address);
        QObject::connect(&*server, &QDBusServer::newConnection, &owner, serveOn);
    } else {
        QDBusConnection bus = QDBusConnection::connectToBus(address, QStringLiteral("bus"));
        if (!serveOn(bus) || !bus.registerService(QString::fromLocal8Bit(argv[2])))
            return 1;
    }
    tellReady();
    return QCoreApplication::exec();
}

#include "DBusOwner.moc"
