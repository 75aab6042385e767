#include "tools/propertyserver/ServeCommand.h"

#include "platform/os/DeviceRoot.h"
#include "property/PropertyVocabulary.h"
#include "tools/propertyserver/PropertyServer.h"
#include "tools/propertyserver/ServerLog.h"

#include <CLI/CLI.hpp>
#include <boost/asio/ip/address.hpp>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <systemd/sd-daemon.h>
#include <unistd.h>

namespace {

using nlohmann::json;

constexpr std::uint16_t kTcpPort = 9102;
constexpr std::string_view kLoopback = "127.0.0.1";
constexpr std::uint32_t kMostDots = PropertyServerOptions::kMostDotsPerInch;
constexpr std::size_t kMostPrograms = 1'000'000;

const std::string kAcName(vocabulary::properties::kBatteryACConnected.name);
const std::string kDotsName(vocabulary::properties::kDotsPerInch.name);

// For the command line: returns what is wrong with it.
std::string checkAddress(const std::string& text) {
    boost::system::error_code failure;
    static_cast<void>(boost::asio::ip::make_address(text, failure));
    return failure ? '"' + text + "\" is no IP address, such as 192.168.1.5 or ::1" : std::string();
}

// What the parser says, without the number of its kind.
std::string withoutNumber(const std::string& what) {
    const std::size_t end = what.find("] ");
    return what.starts_with('[') && end != std::string::npos ? what.substr(end + 2) : what;
}

struct Arguments {
    std::string root;
    bool onTcp = false;
    std::string tcpAddress;
    std::uint16_t tcpPort = kTcpPort;
    std::string firmwareFile;
    std::optional<bool> acConnected;
    std::optional<std::uint32_t> dotsPerInch;
    std::size_t mostPrograms = PropertyServerOptions().mostPrograms;
    bool isQuiet = false;
};

// A value that is none is refused, and so is a name that nobody would read: it is a slip of the pen.
void readFirmwareValue(const std::string& name, const json& value, PropertyServerOptions& options) {
    if (name == kAcName && value.is_boolean())
        options.acConnected = value.get<bool>();
    else if (name == kDotsName && value.is_number_unsigned() && value.get<std::uint64_t>() >= 1 &&
             value.get<std::uint64_t>() <= kMostDots)
        options.dotsPerInch = value.get<std::uint32_t>();
    else if (name == kAcName)
        throw std::runtime_error('"' + name + "\" must be true or false");
    else if (name == kDotsName)
        throw std::runtime_error('"' + name + "\" must be a number from 1 to " + std::to_string(kMostDots));
    else
        throw std::runtime_error('"' + name + "\" is no value of the firmware; it has \"" + kAcName +
                                 "\" and \"" + kDotsName + '"');
}

void readFirmwareFile(const std::string& path, PropertyServerOptions& options) {
    std::ifstream file(path);
    if (!file)
        throw std::runtime_error("cannot be read");
    std::set<json> names;
    const json values = json::parse(file, [&names](int depth, json::parse_event_t event, const json& name) {
        if (event == json::parse_event_t::key && depth == 1 && !names.insert(name).second)
            throw std::runtime_error(name.dump() + " stands there twice; leave one of them");
        return true;
    });
    if (!values.is_object())
        throw std::runtime_error("is no JSON object");
    for (const auto& [name, value] : values.items())
        readFirmwareValue(name, value, options);
}

PropertyServerOptions optionsFrom(const Arguments& arguments) {
    PropertyServerOptions options;
    options.devicePath = os::devicePath("PRN0:");
    if (arguments.onTcp || !arguments.tcpAddress.empty())
        options.tcpAddress = arguments.tcpAddress.empty() ? kLoopback : arguments.tcpAddress;
    options.tcpPort = arguments.tcpPort;
    options.mostPrograms = arguments.mostPrograms;
    if (!arguments.firmwareFile.empty()) {
        try {
            readFirmwareFile(arguments.firmwareFile, options);
        } catch (const std::exception& failure) {
            throw CLI::ValidationError("--firmware",
                                       arguments.firmwareFile + ": " + withoutNumber(failure.what()));
        }
    }
    options.acConnected = arguments.acConnected.value_or(options.acConnected);
    options.dotsPerInch = arguments.dotsPerInch.value_or(options.dotsPerInch);
    if (!arguments.isQuiet)
        options.log = [log = std::make_shared<ServerLog>(STDERR_FILENO)](std::string_view sentence) {
            log->write(sentence);
        };
    return options;
}

int serve(const Arguments& arguments) {
    if (!arguments.root.empty())
        os::setDeviceRoot(std::filesystem::absolute(arguments.root).string());
    const PropertyServerOptions options = optionsFrom(arguments);
    std::error_code noFolder; // listening fails then, and tells
    std::filesystem::create_directories(std::filesystem::path(options.devicePath).parent_path(), noFolder);
    std::string why;
    const std::unique_ptr<PropertyServer> server = PropertyServer::create(options, why);
    if (!server) {
        std::cerr << "picl serve: " << why << '\n';
        return 1;
    }
    server->stopOnSignals();
    std::cout << "Listening on " << options.devicePath << '\n';
    if (server->tcpPort() != 0)
        std::cout << "Listening on " << options.tcpAddress << ", port " << server->tcpPort() << '\n';
    std::cout << std::flush;
    static_cast<void>(::sd_notify(0, "READY=1")); // without a service manager there is nobody to tell
    server->run();
    static_cast<void>(::sd_notify(0, "STOPPING=1"));
    return 0;
}

} // namespace

void addServeCommand(CLI::App& app, int& status) {
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* command =
        app.add_subcommand("serve", "Be the property server of this device root, until interrupted");
    command->add_option("--root", arguments->root, "The device root; dev/PRN0 below it is listened on")
        ->type_name("FOLDER")
        ->check(CLI::ExistingDirectory);
    command->add_flag("--tcp", arguments->onTcp, "Listen on TCP too, on this machine alone");
    command
        ->add_option("--tcp-address", arguments->tcpAddress,
                     "Listen on TCP too, on this IP address: whoever reaches it may read and set everything")
        ->type_name("ADDRESS")
        ->check(CLI::Validator(checkAddress, ""));
    CLI::Option* port = command
                            ->add_option("--tcp-port", arguments->tcpPort,
                                         "Listen on TCP too, on this port; 0 for one that is free")
                            ->capture_default_str();
    command
        ->add_option("--firmware", arguments->firmwareFile,
                     "A JSON file with the values of the firmware, such as {\"" + kAcName + "\": false, \"" +
                         kDotsName + "\": 203}; options count more")
        ->type_name("FILE")
        ->check(CLI::ExistingFile);
    command->add_option("--ac-connected", arguments->acConnected,
                        "\"" + kAcName + "\": true (if not told) or false");
    command->add_option("--dots-per-inch", arguments->dotsPerInch, "\"" + kDotsName + "\": 300 if not told")
        ->check(CLI::Range(std::uint32_t{1}, kMostDots));
    command->add_option("--max-programs", arguments->mostPrograms, "Turn programs away beyond this number")
        ->capture_default_str()
        ->check(CLI::Range(std::size_t{1}, kMostPrograms));
    command->add_flag("--quiet", arguments->isQuiet, "Tell nothing of programs that are refused or go");
    command->callback([arguments, port, &status] {
        arguments->onTcp |= port->count() > 0;
        status = serve(*arguments);
    });
}
