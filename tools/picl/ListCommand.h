#pragma once

class CommandLine;

/// Adds "picl list" to @p line.
void addListCommand(CommandLine& line);
