#pragma once

class CommandLine;

/// Adds "picl watch" to @p line.
void addWatchCommand(CommandLine& line);
