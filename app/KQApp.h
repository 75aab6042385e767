#pragma once

#include <QObject>
#include <memory>
#include <string>

class QGuiApplication;
class QQmlApplicationEngine;
class QString;
class QUrl;

/// The general part of a printer application: its identity, the folders in which Qt looks for plug-ins and
/// QML modules, the engine and the event loop. Everything runs on the GUI thread, the process's first.
class KQApp : public QObject {
    Q_OBJECT

public:
    /// Says who this program is, where Qt finds its plug-ins and how it draws. Requires: called once, before
    /// the QGuiApplication exists.
    static void initialise(const std::string& applicationName, const std::string& componentGuid,
                           const std::string& componentName);

    /// Makes the font in @p file known, before any other, and the default one. A file that is no font changes
    /// nothing. Requires: the QGuiApplication exists.
    static void registerFirstFont(const QString& file);

    KQApp();
    ~KQApp() override;

    /// Loads the QML at @p rootFile and runs the event loop. Returns the value of the loop. A root file that
    /// does not load leaves the loop running without a window. Blocks until the application is told to quit.
    int run(QGuiApplication& application, const QUrl& rootFile);

protected:
    /// Registers the types and sets the context objects that the root file of this application needs.
    virtual void setupQml(QGuiApplication& application,
                          const std::shared_ptr<QQmlApplicationEngine>& engine) = 0;
};
