#pragma once

class CommandLine;

/// Adds "picl set" to @p line.
void addSetCommand(CommandLine& line);
