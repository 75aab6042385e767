#pragma once

#include <QObject>
#include <memory>
#include <string>

class KQDisplayPreferences;
class KQLocalPreferences;
class PICLIF;
class PublishingPropertyManager;
class QGuiApplication;
class QQmlApplicationEngine;
class QString;
class QUrl;
class ThreadFactory;

/// The general part of a printer application: its identity, the folders in which Qt looks for plug-ins, fonts
/// and QML modules; its threads, properties and preferences; the engine and the event loop. Everything runs
/// on the GUI thread, the process's first. What comes up here goes down in the reverse order.
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

    /// Starts the threads and reads the properties. Requires: the QGuiApplication exists.
    KQApp();
    ~KQApp() override;

    /// Loads the QML at @p rootFile and runs the event loop. Returns the value of the loop. A root file that
    /// does not load leaves the loop running without a window. Blocks until the application is told to quit.
    int run(QGuiApplication& application, const QUrl& rootFile);

protected:
    /// Registers the types and sets the context objects that the root file of this application needs.
    virtual void setupQml(QGuiApplication& application,
                          const std::shared_ptr<QQmlApplicationEngine>& engine) = 0;

    /// Connects @p client to the property server, through the printer's device or, off the printer, by TCP to
    /// the address in the local preferences. A server that cannot be reached is no failure: what belongs to
    /// others then has its default. Blocks for the connection and for the answers.
    virtual void connectToPrinter(const std::shared_ptr<PICLIF>& client);

    /// Makes the fonts in @p folder known, a path of the printer that ends in a slash.
    static void loadFonts(const std::wstring& folder);

    [[nodiscard]] const std::shared_ptr<ThreadFactory>& threads() const { return m_threads; }
    [[nodiscard]] const std::shared_ptr<PublishingPropertyManager>& propertyManager() const {
        return m_propertyManager;
    }
    [[nodiscard]] KQDisplayPreferences* displayPreferences() const { return m_displayPreferences.get(); }
    void setDisplayPreferences(std::shared_ptr<KQDisplayPreferences> preferences);

private:
    [[nodiscard]] bool connect(PICLIF& client) const;

    std::shared_ptr<ThreadFactory> m_threads;
    std::shared_ptr<PublishingPropertyManager> m_propertyManager;
    std::shared_ptr<KQLocalPreferences> m_localPreferences;
    std::shared_ptr<KQDisplayPreferences> m_displayPreferences;
};
