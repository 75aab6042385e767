#pragma once

class CommandLine;

/// Adds "picl dump" to @p line.
void addDumpCommand(CommandLine& line);
