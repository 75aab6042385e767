#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What the hardware of this printer has, told by a file that belongs to the printer's installed data.

/// Returns the names of the features, in the order of the file and with its repetitions; none where there is
/// no file, or none that can be read. Thread: any. Blocks for the file and while the JSON engine is in use.
[[nodiscard]] std::vector<std::string> readSystemFeatures();

/// Returns whether @p features hold exactly @p name.
[[nodiscard]] bool hasFeature(const std::vector<std::string>& features, std::string_view name);
