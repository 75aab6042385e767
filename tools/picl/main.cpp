#include "tools/picl/CommandLine.h"
#include "tools/picl/CompleteCommand.h"
#include "tools/picl/DumpCommand.h"
#include "tools/picl/GetCommand.h"
#include "tools/picl/ListCommand.h"
#include "tools/picl/LoadCommand.h"
#include "tools/picl/SetCommand.h"
#include "tools/picl/WatchCommand.h"
#include "tools/propertyserver/ServeCommand.h"

#include <cerrno>
#include <cstdio>
#include <exception>
#include <iostream>

namespace {

/// Returns @p status, or that of a failure where what was printed did not get out.
int finish(int status) {
    if (std::cout.flush())
        return status;
    std::cout.clear(); // once more, for the reason
    errno = 0;
    std::cout.put('\n').flush();
    if (errno != EPIPE) // nobody reads any more: that is no error
        std::perror("picl: cannot print");
    return kFailed;
}

int run(int argc, char* argv[]) {
    CommandLine line;
    addListCommand(line);
    addGetCommand(line);
    addSetCommand(line);
    addWatchCommand(line);
    addDumpCommand(line);
    addLoadCommand(line);
    addCompleteCommand(line);
    int served = kDone;
    addServeCommand(line.app(), served);
    const int status = line.run(argc, argv); // a server has run when this returns
    return finish(status == kDone ? served : status);
}

} // namespace

int main(int argc, char* argv[]) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "picl: %s\n", error.what());
        return kFailed;
    }
}
