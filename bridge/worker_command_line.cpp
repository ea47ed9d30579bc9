#include "bridge/worker_command_line.h"
#include "base/data_files.h"

namespace {

std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

}  // namespace

std::string workerCommandLine(const WorkerStart& start) {
    std::string line;
    if (start.programExists)
        line = quoted(joinPath(start.pluginFolder, kWorkerProgram));
    else
        line = quoted(start.python) + ' ' + quoted(joinPath(start.pluginFolder, kWorkerScript));
    return line + " --data-dir " + quoted(start.dataFolder) + " --watch-pid " + std::to_string(start.hostProcessId);
}
