// worker_command_line.h - how the worker process is started.
#pragma once
#include <cstdint>
#include <string>

inline constexpr const char* kWorkerProgram = "hopline_worker.exe";
inline constexpr const char* kWorkerScript = "hopline_worker.py";

struct WorkerStart {
    std::string pluginFolder;  // of our own DLL, may be empty
    std::string dataFolder;
    std::string python;           // interpreter of the script, as the user set it
    std::uint32_t hostProcessId;  // the worker ends with this process
    bool programExists;           // kWorkerProgram is in pluginFolder
};

// The program if it is there, otherwise the script under the interpreter; all paths quoted.
std::string workerCommandLine(const WorkerStart& start);
