#pragma once

class CommandLine;

/// Adds "picl complete" to @p line.
void addCompleteCommand(CommandLine& line);
