#pragma once

#include "tests/support/StreamMedium.h"

/// The kinds of stream of this floor; the two devices are "PRN0:" of the device root @p root,
/// and the TCP connection stays on this host.
std::unique_ptr<StreamMedium> makeFileMedium(const std::filesystem::path& root);
std::unique_ptr<StreamMedium> makeSocketMedium(const std::filesystem::path& root);
std::unique_ptr<StreamMedium> makeTerminalMedium(const std::filesystem::path& root);
std::unique_ptr<StreamMedium> makeTcpMedium(const std::filesystem::path& root);
