// worker_process_win.h - the worker: started with the plugin, killed with it or with the host, never restarted.
#pragma once
#include <string>
#include "base/host_functions.h"

// The two handles; null when not held. [host] alone, at init and shutdown.
struct WorkerProcess {
    void* workerJob = nullptr;  // kills the worker when its last handle closes, even if the host crashes
    void* workerProcess = nullptr;
};

// [host] Stops an earlier worker first. Logs whether the new one could be started.
void startWorker(WorkerProcess& worker, const HostFunctions& host, const std::string& pluginFolder,
                 const std::string& dataFolder, const std::string& python);

// [host] Kills the worker if there is one.
void stopWorker(WorkerProcess& worker);
