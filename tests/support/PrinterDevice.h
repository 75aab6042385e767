#pragma once

#include "platform/os/Descriptor.h"

#include <filesystem>
#include <memory>

/// The device "PRN0:" of a device root, with its other side in the hand of a test.
class PrinterDevice {
public:
    virtual ~PrinterDevice() = default;

    /// Returns the other side of what was opened last. Blocks until something was opened.
    virtual os::Descriptor takeOtherSide() = 0;
};

std::unique_ptr<PrinterDevice> makeSocketDevice(const std::filesystem::path& root);
std::unique_ptr<PrinterDevice> makeTerminalDevice(const std::filesystem::path& root);
