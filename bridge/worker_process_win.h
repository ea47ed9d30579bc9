// worker_process_win.h - the worker: started with the plugin, killed with it or with the host, never restarted.
#pragma once
#include <cstdint>
#include <string>
#include "base/host_functions.h"
#include "bridge/disconnect_reason.h"

// [host] sets it at init and shutdown, while [poll] is not running; [poll] looks. The two handles are null when not
// held.
struct WorkerProcess {
    void* workerJob = nullptr;  // kills the worker when its last handle closes, even if the host crashes
    void* workerProcess = nullptr;
    std::uint32_t startError = 0;  // the system's, if the worker could not be started
    bool isMissing = false;        // at the start neither program nor script stood in the plugin's folder
};

// [host] Stops an earlier worker first. Logs whether the new one could be started.
void startWorker(WorkerProcess& worker, const HostFunctions& host, const std::string& pluginFolder,
                 const std::string& dataFolder, const std::string& python);

// [poll] What has become of it.
WorkerLife lookAtWorker(const WorkerProcess& worker);

// [host] Kills the worker if there is one.
void stopWorker(WorkerProcess& worker);
