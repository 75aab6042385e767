#pragma once

#include "platform/os/Descriptor.h"
#include "property/PropertyVocabulary.h"
#include "tests/support/PrinterDevice.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// A property as the vocabulary has it, with the value that a test gives it or expects of it.
struct KnownProperty {
    [[nodiscard]] std::string key() const;

    /// Returns its line in a property file.
    [[nodiscard]] std::string line() const;

    VocabularyEntry group;
    VocabularyEntry property;
    std::string value;
};

using KnownProperties = std::vector<KnownProperty>;
using Reports = std::vector<std::string>;

/// Returns the reports of @p component on @p properties, in their order.
Reports reportsOn(const KnownProperties& properties,
                  const VocabularyEntry& component = vocabulary::components::kUpgradeUI);

/// Returns the message that carries @p reports, with @p begin in front.
std::string messageOf(const Reports& reports, std::string_view begin = "{");

/// The property server of a printer, played by a test. It listens on the device of a device root, and sends
/// and receives what the test requests.
class ScriptedPropertyServer {
public:
    explicit ScriptedPropertyServer(const std::filesystem::path& root) : m_device(makeSocketDevice(root)) {}

    /// Takes in the application that has connected. Blocks until one has.
    void accept();

    void hangUp() { m_connection = {}; }

    void says(std::string_view text);

    /// Says the value of a property of the firmware.
    void saysOfFirmware(const KnownProperty& property);

    /// Sets @p properties of the application, in one message.
    void sets(const KnownProperties& properties);

    /// Asks the application for @p property.
    void asksFor(const KnownProperty& property);

    /// Returns the next frame; an empty one stands for the end of the stream, or none by the deadline.
    std::string hears();

    /// Returns the next frame that contains @p text; the others are skipped. Empty as hears().
    std::string hearsFrameWith(std::string_view text);

    /// Hears publications until as many reports have come as @p created has, which are those expected, in the
    /// order in which the properties were created or changed. Returns what came in that order, too: a
    /// publisher tells the newest first, in each of the two looks that it takes for a frame.
    Reports hearsPublished(const Reports& created);

    /// Asks for all properties. Returns the answer; what comes before it is passed over.
    std::string hearsAll();

    /// Waits until the application has dealt with all that was said; what it says meanwhile is passed over.
    void sync();

private:
    std::unique_ptr<PrinterDevice> m_device;
    os::Descriptor m_connection;
};
