#pragma once

namespace CLI {
class App;
}

/// Adds the command "serve" to @p app: the property server, until it is interrupted.
///
/// Its callback blocks as long as it serves and sets @p status to the exit status: 0 after a signal, 1 where
/// it cannot listen. Bad options are CLI::ValidationErrors. @p status and @p app outlive the parsing.
void addServeCommand(CLI::App& app, int& status);
