#pragma once

class CommandLine;

/// Adds "picl load" to @p line.
void addLoadCommand(CommandLine& line);
