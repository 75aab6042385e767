#pragma once

#include <string>

/// Kills this process at the n-th step that it does on a file below one of two folders: opening, writing,
/// cutting, syncing, removing. A write that it is killed at has done half of its work. The steps are those of
/// the C library, whoever calls them.
void killAtStep(int step, const std::string& folder, const std::string& otherFolder);
