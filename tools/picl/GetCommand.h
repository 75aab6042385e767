#pragma once

class CommandLine;

/// Adds "picl get" to @p line.
void addGetCommand(CommandLine& line);
